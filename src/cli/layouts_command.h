// The command "layouts": which layouts are the user's own, what tells them from the installed ones, and the way
// back.
#pragma once

#include "cli/console.h"
#include "cli/options.h"

namespace kvtdruck::cli {

/// Does what the options ask for; gives the program's exit code. Throws a `catalog::UsageError` where there is
/// nothing to return to, and what the file system throws.
int runLayouts(const Options& options, Console& console);

} // namespace kvtdruck::cli
