// Arithmetic on names, as a value and as a spreadsheet's formula.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kvtdruck::druckwerk {

/// Gives the number that a name stands for; nothing where it has none.
using NumberOfName = std::function<std::optional<double>(std::string_view)>;
/// Gives the cell that a name stands for.
using CellOfName = std::function<std::string(std::string_view)>;

/// The value of `formula`: names, numbers, + - * /, parentheses, abs(…), and pos(…), which is nothing where it is
/// not above zero. Nothing where a name has no number, and for what is no finite number, such as a division by
/// zero.
std::optional<double> valueOf(std::string_view formula, const NumberOfName& number);

/// `formula`, which is without pos(…), in a spreadsheet's words, with a cell in the place of each name; it is empty
/// where `valueOf` gives nothing for a division by zero.
std::string spreadsheetFormula(std::string_view formula, const CellOfName& cell);

} // namespace kvtdruck::druckwerk
