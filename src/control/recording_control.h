// The record of engine calls: what did my layout get, and do two engines or two hosts see the same?
#pragma once

#include "control/control.h"

#include <functional>
#include <string>
#include <string_view>

namespace kvtdruck {

/// Takes one line of a record (UTF-8, without a line end).
using RecordSink = std::function<void(std::string_view line)>;

/// Appends `text` to `line` in quotes, written as JSON writes strings (UTF-8; the half of a surrogate pair as \u…).
void appendQuoted(std::string& line, StringView text);

/// The line of one call: the operation, its arguments (texts quoted as in JSON, the window as hWnd) and the result,
/// as in
///   LlDefineVariableExt("FnrName1", "Musterbau GmbH", 268435456) = 0
std::string recordLine(StringView operation, std::span<const Argument> arguments, std::int32_t result);

/// The line of a call that failed: "! " and the run-time error's number stand in the place of the result.
std::string recordFailure(StringView operation, std::span<const Argument> arguments, long errorNumber);

/// Forms whose controls write every call to `sink` and pass it on to the control of a form that `inner` makes. Both
/// outlive the forms.
class RecordingFormFactory final : public FormFactory {
  public:
    RecordingFormFactory(FormFactory& inner, RecordSink sink) : inner_(inner), sink_(std::move(sink)) {}
    std::unique_ptr<Form> create() override;

  private:
    FormFactory& inner_;
    RecordSink sink_;
};

} // namespace kvtdruck
