#include "control/recording_control.h"

#include "values/code_points.h"
#include "values/runtime_error.h"

#include <utility>

namespace kvtdruck {
namespace {

void appendEscape(std::string& line, unsigned unit) {
    constexpr char kHex[] = "0123456789abcdef";
    line += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        line += kHex[(unit >> shift) & 0xf];
}

} // namespace

void appendQuoted(std::string& line, StringView text) {
    line += '"';
    for (std::size_t i = 0; i < text.size();) {
        const auto [c, units] = codePointAt(text, i);
        if (c == U'"' || c == U'\\') {
            line += '\\';
            line += static_cast<char>(c);
        } else if (c < 0x20 || isSurrogate(c)) {
            appendEscape(line, c);
        } else {
            line += toUtf8(text.substr(i, units));
        }
        i += units;
    }
    line += '"';
}

namespace {

std::string callText(StringView operation, std::span<const Argument> arguments) {
    auto line = toUtf8(operation) + "(";
    const char* separator = "";
    for (const auto& argument : arguments) {
        line += separator;
        separator = ", ";
        if (const auto* text = std::get_if<StringView>(&argument))
            appendQuoted(line, *text);
        else if (const auto* number = std::get_if<std::int32_t>(&argument))
            line += std::to_string(*number);
        else
            line += "hWnd";
    }
    return line + ")";
}

class RecordingControl final : public Control {
  public:
    RecordingControl(Control& inner, const RecordSink& sink) : inner_(inner), sink_(sink) {}

    std::int32_t call(Operation operation, std::span<const Argument> arguments) override {
        const auto name = nameOf(operation);
        return recorded([&](long error) { return recordFailure(name, arguments, error); },
                        [&] {
                            const auto result = inner_.call(operation, arguments);
                            sink_(recordLine(name, arguments, result));
                            return result;
                        });
    }

    void put(std::int32_t dispatchId, bool value) override {
        const auto property = "[" + std::to_string(dispatchId) + "]";
        recorded([&](long error) { return property + " ! " + std::to_string(error); },
                 [&] {
                     inner_.put(dispatchId, value);
                     sink_(property + " = " + (value ? "-1" : "0"));
                     return kEngineSuccess;
                 });
    }

    ObjectRef member(StringView name) override { return inner_.member(name); }

  private:
    template <class Failure, class Call>
    std::int32_t recorded(Failure&& failure, Call&& call) {
        try {
            return call();
        } catch (const RuntimeError& error) {
            sink_(failure(error.number()));
            throw;
        }
    }

    Control& inner_;
    const RecordSink& sink_;
};

class RecordingForm final : public Form {
  public:
    RecordingForm(std::unique_ptr<Form> inner, const RecordSink& sink)
        : inner_(std::move(inner)), control_(inner_->ll60(), sink) {}

    Control& ll60() override { return control_; }
    WindowHandle hWnd() override { return inner_->hWnd(); }
    bool visible() override { return inner_->visible(); }
    void hide() override { inner_->hide(); }

  private:
    std::unique_ptr<Form> inner_;
    RecordingControl control_;
};

} // namespace

std::string recordLine(StringView operation, std::span<const Argument> arguments, std::int32_t result) {
    return callText(operation, arguments) + " = " + std::to_string(result);
}

std::string recordFailure(StringView operation, std::span<const Argument> arguments, long errorNumber) {
    return callText(operation, arguments) + " ! " + std::to_string(errorNumber);
}

std::unique_ptr<Form> RecordingFormFactory::create() {
    return std::make_unique<RecordingForm>(inner_.create(), sink_);
}

} // namespace kvtdruck
