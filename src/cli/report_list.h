// What `kvtdruck listen` tells about the reports.
#pragma once

#include "catalog/report_catalog.h"

#include <string>
#include <vector>

namespace kvtdruck::cli {

/// One line per report: list name, title, selections.
std::string describeReports();

/// Everything about one report: its selections, or the columns of its file of values.
std::string describeReport(const catalog::ReportEntry& report);

/// The same of these reports, of all where there are none, as a JSON array for programs.
std::string reportsAsJson(const std::vector<const catalog::ReportEntry*>& reports);

} // namespace kvtdruck::cli
