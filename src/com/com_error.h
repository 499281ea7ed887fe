// Failures of COM calls as run-time errors.
#pragma once

#include "values/runtime_error.h"

#include <windows.h>

#include <oaidl.h>

namespace kvtdruck::com {

/// The run-time error that `result` stands for: its own number where there is one, else `result` itself with the
/// system's text.
RuntimeError runtimeErrorOf(HRESULT result);

/// The error that an Invoke raised: number and description of its source where it gives them. Frees the three
/// texts.
RuntimeError runtimeErrorOf(EXCEPINFO& exception);

/// Raises the run-time error where `result` is a failure.
void check(HRESULT result);

} // namespace kvtdruck::com
