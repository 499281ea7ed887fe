// The cell formats of a workbook.
#pragma once

#include "druckwerk/exits/workbook_plan.h"

#include <string>

namespace kvtdruck::druckwerk {

/// The number of a cell's format in the workbook.
using CellStyle = unsigned;

inline constexpr CellStyle kPlain = 0;
inline constexpr CellStyle kBold = 1;
inline constexpr CellStyle kTitle = 2;
inline constexpr CellStyle kHeading = 3;       ///< of a table's column
inline constexpr CellStyle kNumberHeading = 4; ///< the same above numbers

/// The style of a table's cell, or of one of its sums.
CellStyle styleOf(CellFormat format, bool total);

/// The part of the workbook that lists them.
std::string stylesPart();

} // namespace kvtdruck::druckwerk
