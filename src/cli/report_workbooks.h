// What the workbook of each report shows: its tables, with the words of its page.
#pragma once

#include "catalog/report_catalog.h"
#include "druckwerk/exits/workbook_plan.h"

namespace kvtdruck::cli {

/// The tables of a report's workbook.
druckwerk::WorkbookPlan workbookOf(const catalog::ReportEntry& report);

} // namespace kvtdruck::cli
