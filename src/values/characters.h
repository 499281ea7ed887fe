// Kinds of characters, as Automation reads numbers and dates, and letter case.
#pragma once

#include "values/text.h"

#include <algorithm>

namespace kvtdruck {

constexpr bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// White space, the no-break and the narrow blanks of Unicode among it.
constexpr bool isBlank(char16_t unit) {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == 0xA0 || (unit >= 0x2000 && unit <= 0x200A) ||
           unit == 0x202F || unit == 0x3000;
}

/// The small letter of A to Z; every other unit as it is.
constexpr char16_t asciiLower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

/// Whether both are the same but for the case of the letters A to Z.
constexpr bool sameWord(StringView left, StringView right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t a, char16_t b) { return asciiLower(a) == asciiLower(b); });
}

} // namespace kvtdruck
