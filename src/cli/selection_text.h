// What was selected, in words: for workbooks and for the document's metadata.
#pragma once

#include "catalog/report_catalog.h"

#include <string>

namespace kvtdruck::cli {

/// The years: "2024", "2023–2025", "ab 2023", "bis 2025"; empty for all.
std::string periodText(const catalog::Selections& ranges);

/// Everything, as users say it: "Jahr 2024 · Konten 4100–4199", "alle Jahre".
std::string selectionText(const catalog::ReportEntry& report, const catalog::Selections& ranges);

} // namespace kvtdruck::cli
