// What is known of the variables and fields of the lists, for authors of layouts.
#pragma once

#include "catalog/report_catalog.h"
#include "druckwerk/exits/palette.h"

#include <string>
#include <vector>

namespace kvtdruck::cli {

/// Tells the meaning of a name that `report` defines, and the pattern that its like are printed with; no meaning
/// where nobody knows it.
druckwerk::FieldNotes fieldNotes(const catalog::ReportEntry& report);

/// All variables and fields as a table for people. Where the data are blank no value is shown.
std::string describeFields(const catalog::ReportEntry& report,
                           const std::vector<druckwerk::Definition>& definitions, bool blank);
/// The same as a JSON object for programs.
std::string fieldsAsJson(const catalog::ReportEntry& report, const std::vector<druckwerk::Definition>& definitions,
                         bool blank);

} // namespace kvtdruck::cli
