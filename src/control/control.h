// The reporting engine's control as the component calls it: every operation by its fixed dispatch number, with its
// arguments by value and a 32-bit result.
#pragma once

#include "values/object.h"
#include "values/text.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <variant>

namespace kvtdruck {

/// The control's operations that the component uses; the value is the operation's dispatch number.
enum class Operation : std::int32_t {
    LlDefineFieldExt = 65,
    LlDefineVariableExt = 66,
    LlDefineFieldStart = 67,
    LlDefineVariableStart = 68,
    LlDefineLayout = 72,
    LlPrint = 73,
    LlPrintFields = 75,
    LlPrintFieldsEnd = 76,
    LlPrintEnd = 77,
    LlPreviewSetTempPath = 83,
    LlPreviewDeleteFiles = 84,
    LlPreviewDisplay = 85,
    LlPrintSetBoxText = 89,
    LlPrintWithBoxStart = 96,
    LlPrintOptionsDialog = 97,
    LlSetPrinterToDefault = 101,
    LlStgsysStorageOpen = 135,
    LlStgsysStorageClose = 136,
    LlStgsysDrawPage = 153,
    /// Called by its name: it has no fixed number.
    PrintEnd = -1,
};

/// The operation's name, as records of calls and messages show it.
StringView nameOf(Operation operation);

/// The form's window, where the engine wants a parent window. A type of its own, since its value differs from run
/// to run and a record of calls shows it as hWnd.
struct WindowHandle {
    std::intptr_t value = 0;
    bool operator==(const WindowHandle&) const = default;
};

/// One argument of a call. A text is lent for the duration of the call.
using Argument = std::variant<std::int32_t, StringView, WindowHandle>;

/// Result codes of the engine that are no errors.
inline constexpr std::int32_t kEngineSuccess = 0;
inline constexpr std::int32_t kEnginePageFull = -998;
inline constexpr std::int32_t kEngineCancelled = -99;

/// How the engine prints a job: on a printer (or into a file), or as a preview.
inline constexpr std::int32_t kPrintModeNormal = 256;
inline constexpr std::int32_t kPrintModePreview = 512;

/// Type codes of variables and fields.
inline constexpr std::int32_t kTypeNumeric = 0x08000000;
inline constexpr std::int32_t kTypeText = 0x10000000;

/// The engine's control. A call that fails (as opposed to one that answers an error code) raises a run-time error.
class Control {
  public:
    Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    /// Calls `operation` with its arguments in order; gives the engine's result code.
    virtual std::int32_t call(Operation operation, std::span<const Argument> arguments) = 0;
    std::int32_t call(Operation operation, std::initializer_list<Argument> arguments = {}) {
        return call(operation, std::span(arguments.begin(), arguments.size()));
    }

    /// Sets the control's property of number `dispatchId`.
    virtual void put(std::int32_t dispatchId, bool value) = 0;

    /// The object that the control's member `name` gives; run-time error 438 where it has no such member.
    virtual ObjectRef member(StringView name) = 0;
};

/// The hidden form that carries the control, and the window that the engine takes as its parent.
class Form {
  public:
    virtual ~Form() = default;
    virtual Control& ll60() = 0;
    virtual WindowHandle hWnd() = 0;
    virtual bool visible() = 0;
    virtual void hide() = 0;
};

/// Where new forms come from: the platform's window and the engine that is there.
class FormFactory {
  public:
    virtual ~FormFactory() = default;
    /// A new form with its control created; run-time error 429 where the engine is missing.
    virtual std::unique_ptr<Form> create() = 0;
};

} // namespace kvtdruck
