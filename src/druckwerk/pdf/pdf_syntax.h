// Numbers, texts and colours as PDF writes them.
#pragma once

#include "druckwerk/common/geometry.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kvtdruck::druckwerk {

/// `value` with at most two decimals, as PDF numbers are written.
void appendNumber(std::string& out, double value);
/// What moves the place of text by `x` and `y`, given in hundredths.
void appendMove(std::string& out, std::int64_t x, std::int64_t y);
/// A PDF text string (UTF-16 in hexadecimal) of UTF-16 `text`.
std::string pdfText(std::u16string_view text);
/// `bytes` as a PDF string in hexadecimal.
std::string hexadecimalString(std::string_view bytes);
/// A colour as operands of a colour operator.
void appendColor(std::string& out, Rgb color);

} // namespace kvtdruck::druckwerk
