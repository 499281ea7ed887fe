#include "cli/call_record.h"

#include "cli/layout_store.h"
#include "druckwerk/common/fault.h"

#include <stdexcept>
#include <utility>

namespace kvtdruck::cli {

CallRecord::CallRecord(std::filesystem::path file, bool goesOn, Console& console)
    : name_(std::move(file)), console_(console) {
    try {
        const auto before = goesOn ? contentOf(name_) : std::string();
        file_.emplace(name_);
        file_->write(before);
    } catch (const std::system_error& error) {
        throw std::runtime_error(failure(error));
    }
}

FormFactory& CallRecord::around(FormFactory& inner) {
    return forms_.emplace(
        inner, [this](std::string_view line) { attempt([&] { file_->write(std::string(line) + "\n"); }); });
}

void CallRecord::finish() {
    attempt([&] { file_->commit(); });
}

std::string CallRecord::failure(const std::system_error& error) const {
    return "Das Protokoll " + name_.string() +
           " kann nicht geschrieben werden: " + druckwerk::reasonForReading(error.code().value());
}

/// A step that fails is the last one.
template <class Step>
void CallRecord::attempt(Step&& step) {
    try {
        if (file_)
            step();
    } catch (const std::system_error& error) {
        file_.reset();
        console_.error(failure(error));
    }
}

} // namespace kvtdruck::cli
