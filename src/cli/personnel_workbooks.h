// The workbooks of the personnel reports.
#pragma once

#include "druckwerk/exits/workbook_plan.h"

#include <string_view>

namespace kvtdruck::cli {

/// The tables of a personnel report's workbook; none for any other report.
druckwerk::WorkbookPlan personnelWorkbook(std::string_view listName);

} // namespace kvtdruck::cli
