// One request to the component, with everything that it needs around it.
#pragma once

#include "cli/console.h"
#include "cli/options.h"

namespace kvtdruck::cli {

/// Exit codes of the program.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;
inline constexpr int kCancelled = 130;

/// Prints, previews, designs or checks the report that `options` name; gives the program's exit code. Messages go
/// to `console`. May throw what the file system or a file of values throws before anything is printed.
int runReport(const Options& options, Console& console);

/// Lists the companies of the database on standard output; gives the program's exit code.
int listCompanies(const Options& options, Console& console);

} // namespace kvtdruck::cli
