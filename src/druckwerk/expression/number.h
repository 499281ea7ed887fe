// Numbers as the report hands them over, with their decimal digits.
#pragma once

#include "values/locale.h"

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
    double value = 0; ///< the double nearest to the number
    std::int64_t digits = 0;
    int scale = 0;
    Kind kind = Kind::Missing;

    /// The number that `text` is in the notation of `locale` and in no other: its decimal sign, its separator
    /// between groups of three digits or none at all, an exponent; blanks around it.
    static Number parse(StringView text, const Locale& locale);
    /// `value`, to 15 significant digits.
    static Number of(double value);

    bool isNumber() const { return kind == Kind::Exact || kind == Kind::Large; }
};

} // namespace kvtdruck::druckwerk
