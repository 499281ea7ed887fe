// Files of values: the figures of the reports that a host hands over whole, as CSV (docs/werte.md).
#pragma once

#include "catalog/parameter_array.h"
#include "catalog/report_catalog.h"

#include <memory>
#include <stdexcept>
#include <string_view>

namespace kvtdruck::catalog {

/// A file of values that can't be read or is wrong; the text is German, with file, line, column and reason.
class ValuesError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The parameter array that `text` (UTF-8, semicolons) holds for `report`. A first line of column names puts the
/// columns in their places; without one they stand in the array's own order from column 0. A cell's kind follows
/// from its text: nothing is Empty, a German number is a Double, a date a Date, Wahr and Falsch are Booleans,
/// anything else and everything in quotes is text. `file` names the source in errors. A million cells are the most.
std::shared_ptr<ParameterArray> parseValues(const ReportEntry& report, std::string_view text,
                                            const std::string& file);

} // namespace kvtdruck::catalog
