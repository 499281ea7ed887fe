// The options dialog at the terminal: on which printer, or into which file.
#pragma once

#include "cli/console.h"
#include "druckwerk/druckwerk.h"
#include "druckwerk/exits/printing.h"

#include <cstdint>

namespace kvtdruck::cli {

/// Lets the user choose; the choice goes to `request.output` or to `settings.printer`. Gives 0, or -99 when the
/// user cancels.
std::int32_t choosePrinter(Console& console, druckwerk::OptionsRequest& request,
                           druckwerk::PrintSettings& settings);

} // namespace kvtdruck::cli
