// What was selected, in words for the document's metadata.
#pragma once

#include "catalog/report_catalog.h"

#include <string>

namespace kvtdruck::cli {

/// The years: "2024", "2023–2025", "ab 2023", "bis 2025"; empty for all.
std::string periodText(const catalog::Selections& ranges);

/// Everything: "Firma 1, Jahr 2024, Konto 4100–4200, Monat 3".
std::string selectionText(double company, const catalog::Selections& ranges);

} // namespace kvtdruck::cli
