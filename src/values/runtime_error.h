// Run-time errors: what the host's error log shows as number and German description.
#pragma once

#include "values/text.h"

#include <exception>
#include <string>

namespace kvtdruck {

/// Numbers of the run-time errors that the component itself raises.
enum class ErrorNumber : long {
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    InternalError = 51,
    FileNotFound = 53,
    DeviceIoError = 57,
    FileAlreadyExists = 58,
    DiskFull = 61,
    PermissionDenied = 70,
    PathFileAccess = 75,
    PathNotFound = 76,
    ObjectNotSet = 91,
    InvalidUseOfNull = 94,
    CannotCreateObject = 429,
    MemberNotFound = 438,
    ActionNotSupported = 445,
};

/// The German description that belongs to a run-time error's number; "Anwendungs- oder objektdefinierter Fehler"
/// for numbers that have none of their own.
StringView describe(long number);

/// A run-time error on its way to the procedure that reports it.
class RuntimeError : public std::exception {
  public:
    /// The error `number` with its standard description.
    explicit RuntimeError(ErrorNumber number);
    /// A foreign error: number and description as its source gave them.
    RuntimeError(long number, String description);

    long number() const noexcept { return number_; }
    const String& description() const noexcept { return description_; }
    /// Number and description in UTF-8.
    const char* what() const noexcept override { return what_.c_str(); }

  private:
    long number_;
    String description_;
    std::string what_;
};

} // namespace kvtdruck
