// Numbers as the report hands them over (German text), with their decimal digits.
#pragma once

#include "values/text.h"

#include <cstdint>

namespace kvtdruck::druckwerk {

/// A number read from text or computed. Where it has at most 18 digits they are kept, so rounding is decimal.
struct Number {
    enum class Kind : std::uint8_t {
        Missing, ///< an empty text
        None,    ///< a text that is no number, NaN, an infinity
        Exact,   ///< digits / 10^scale
        Large,   ///< only `value` is known
    };
    double value = 0;
    std::int64_t digits = 0;
    int scale = 0;
    Kind kind = Kind::Missing;

    /// Decimal comma, points between groups of three digits, an exponent; a lone point that can't stand between
    /// groups is taken as the decimal sign.
    static Number parse(StringView text);
    /// `value`, to 15 significant digits.
    static Number of(double value);

    bool isNumber() const { return kind == Kind::Exact || kind == Kind::Large; }
};

} // namespace kvtdruck::druckwerk
