// Printers of the system's print service (CUPS), without any dialog or display.
#pragma once

#include "druckwerk/common/options.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

enum class Sides { AsPrinter, One, TwoLongEdge, TwoShortEdge };

/// How a document is to be printed.
struct PrintSettings {
    std::string printer; ///< a queue's name; empty for the default printer
    int copies = 1;
    std::string pages; ///< as in "1-3,7"; empty for all
    Sides sides = Sides::AsPrinter;
    std::string tray; ///< the queue's name for a tray; empty for the printer's own choice
};

/// One queue of the print service.
struct Printer {
    std::string name;
    std::string description;
    bool isDefault = false;
};

/// What came of handing a document over.
struct PrintResult {
    std::int32_t code = 0; ///< 0 or `kPrintingFailed`
    std::string message;   ///< German: the error; with code 0 what the user should know (such as a stopped printer)
    std::string printer;   ///< the queue that took the job
    int job = 0;
};

/// The queues of the print service; none where it can't be reached.
std::vector<Printer> printers();

/// Hands `document` over as one job under its title. Returns when the print service holds all of it.
PrintResult print(const Document& document, const PrintSettings& settings);

} // namespace kvtdruck::druckwerk
