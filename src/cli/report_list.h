// What `kvtdruck listen` tells about the reports.
#pragma once

#include "catalog/report_catalog.h"

#include <string>

namespace kvtdruck::cli {

/// One line per report: list name, title, selections.
std::string describeReports();

/// Everything about one report: its selections, or the columns of its file of values.
std::string describeReport(const catalog::ReportEntry& report);

} // namespace kvtdruck::cli
