// kvtdruck einlesen: CSV files into an embedded database.
#pragma once

#include "cli/console.h"
#include "cli/options.h"

namespace kvtdruck::cli {

/// Reads the files that the options name into their table: all of them or nothing. Gives the program's exit code.
int runImport(const Options& options, Console& console);

} // namespace kvtdruck::cli
