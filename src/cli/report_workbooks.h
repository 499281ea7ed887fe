// What the workbook of each report shows: its tables, with the words of its page.
#pragma once

#include "catalog/report_catalog.h"
#include "druckwerk/exits/workbook_plan.h"

#include <string>

namespace kvtdruck::cli {

/// The tables of a report's workbook.
druckwerk::WorkbookPlan workbookOf(const catalog::ReportEntry& report);

/// What was selected, as users say it: "Jahr 2024 · Konten 4100–4199".
std::string selectionText(const catalog::ReportEntry& report, const catalog::Selections& ranges);

} // namespace kvtdruck::cli
