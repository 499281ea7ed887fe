// How the program and each of its works end.
#pragma once

#include "cli/console.h"

#include <functional>

namespace kvtdruck::cli {

/// Exit codes of the program.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;
inline constexpr int kCancelled = 130;

/// The exit code of `work`; what it throws is told to the user and gives the exit code of a failure, or of a
/// cancelled job where the user has asked to stop.
int withErrorsTold(Console& console, const std::function<int()>& work);

} // namespace kvtdruck::cli
