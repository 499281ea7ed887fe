// A designer with the printed pages beside it.
#pragma once

#include "cli/report_run.h"

namespace kvtdruck::cli {

/// Opens the designer on the layout of a list; at the beginning and each time that the layout is saved it is
/// checked and printed with the data, and a viewer shows the last pages that came about. Ends with the designer, or
/// when the user cancels; gives the program's exit code, which is that of a failure where the last save did not
/// print.
int designLive(const Options& options, PrintRequest request, Console& console);

} // namespace kvtdruck::cli
