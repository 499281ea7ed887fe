// All documents of a call in one: a cover, a table of contents that leads to everything, and page numbers that run
// through.
#pragma once

#include "cli/console.h"
#include "cli/options.h"
#include "cli/report_run.h"

namespace kvtdruck::cli {

/// Prints `requests` into the file `options.binder`, or where its name has the placeholder {firma} into one for
/// each company; gives the program's exit code. What fails is named at the end, and the binder holds the rest;
/// where nothing is left, or the user cancels, there is none.
int printBinders(const Options& options, const std::vector<PrintRequest>& requests, Console& console);

} // namespace kvtdruck::cli
