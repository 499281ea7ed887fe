// Drives the embedded engine as a report does: definitions, pages, lines.
#pragma once

#include "druckwerk/druckwerk.h"
#include "platform/posix/temporary_folder.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace kvtdruck::druckwerk::testing {

inline void writeFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

inline std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// A report on the engine: texts in UTF-8, every warning and error kept.
class ReportDriver {
  public:
    using Values = std::vector<std::pair<std::string, std::string>>;

    explicit ReportDriver(std::filesystem::path output = {}) {
        options.output = std::move(output);
        options.printDate = {2024, 3, 9, 14, 5, 0};
        options.warn = [this](std::string_view text) { warnings.emplace_back(text); };
        options.error = [this](const EngineError& error) { errors.push_back(error); };
        options.cancelled = &cancelled;
    }

    std::int32_t call(Operation operation, std::initializer_list<Argument> arguments = {}) {
        if (!engine)
            engine = std::make_unique<Druckwerk>(std::make_shared<const Options>(options));
        return engine->call(operation, arguments);
    }

    static std::int32_t typeOf(const std::string& value) {
        return value.empty() || value.find_first_not_of("-0123456789,") != std::string::npos ? kTypeText
                                                                                             : kTypeNumeric;
    }

    void variables(const Values& values) {
        for (const auto& [name, value] : values)
            call(Operation::LlDefineVariableExt,
                 {StringView(fromUtf8(name)), StringView(fromUtf8(value)), typeOf(value)});
    }

    void fields(const Values& values) {
        for (const auto& [name, value] : values)
            call(Operation::LlDefineFieldExt,
                 {StringView(fromUtf8(name)), StringView(fromUtf8(value)), typeOf(value)});
    }

    std::int32_t start(const std::filesystem::path& objectName, std::int32_t mode = 256) {
        const String name = fromUtf8(objectName.string());
        return call(Operation::LlPrintWithBoxStart,
                    {2, StringView(name), mode, 2, WindowHandle{}, StringView(name)});
    }

    std::int32_t page() { return call(Operation::LlPrint); }

    /// Prints a line as the reports do: as long as the page is full, on a new one. Gives the last result.
    std::int32_t line() {
        std::int32_t code = call(Operation::LlPrintFields);
        while (code == kEnginePageFull) {
            ++turns;
            page();
            code = call(Operation::LlPrintFields);
        }
        return code;
    }

    std::int32_t end() {
        std::int32_t code = call(Operation::LlPrintFieldsEnd);
        while (code == kEnginePageFull)
            code = call(Operation::LlPrintFieldsEnd);
        if (code == kEngineCancelled) {
            call(Operation::PrintEnd);
            return code;
        }
        return call(Operation::LlPrintEnd, {0});
    }

    Options options;
    std::atomic<bool> cancelled = false;
    std::vector<std::string> warnings;
    std::vector<EngineError> errors;
    std::unique_ptr<Druckwerk> engine;
    int turns = 0;
};

} // namespace kvtdruck::druckwerk::testing
