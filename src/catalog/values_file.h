// Files of values: the figures of the reports that a host hands over whole, as CSV (docs/werte.md).
#pragma once

#include "catalog/csv_text.h"
#include "catalog/parameter_array.h"
#include "catalog/report_catalog.h"

#include <memory>
#include <string_view>

namespace kvtdruck::catalog {

/// The parameter array that `text` (UTF-8 or Windows-1252, semicolons) holds for `report`. A first line of column
/// names puts the columns in their places; without one they stand in the array's own order from column 0. A cell's
/// kind follows from its text: nothing is Empty, a German number is a Double, a date a Date, Wahr and Falsch are
/// Booleans, anything else and everything in quotes is text. `file` names the source in errors.
std::shared_ptr<ParameterArray> parseValues(const ReportEntry& report, std::string_view text,
                                            const std::string& file);

} // namespace kvtdruck::catalog
