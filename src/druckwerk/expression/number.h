// Numbers and dates as the report hands them over (German text), and the patterns that they are printed in.
#pragma once

#include "values/text.h"

#include <array>
#include <cstdint>
#include <vector>

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

/// A German number pattern such as "#.##0,00;-#.##0,00;–".
class NumberPattern {
  public:
    /// Raises a Fault with the reason where `pattern` is none.
    explicit NumberPattern(StringView pattern);
    void append(const Number& number, String& out) const;

  private:
    struct Part {
        String prefix;
        String suffix;
        int integerDigits = 0;
        int minimumDecimals = 0;
        int maximumDecimals = 0;
        bool grouped = false;
        bool percent = false;
        bool hasDigits = false;
    };
    class PartReader;
    static void appendDigits(const Part& part, const char* digits, int count, int decimals, String& out);
    void appendLarge(const Number& number, String& out) const;
    std::vector<Part> parts_;
};

/// A date pattern of the letters d, M, y, H, m, s; text in quotes stands for itself.
class DatePattern {
  public:
    explicit DatePattern(StringView pattern) : pattern_(pattern) {}
    /// Whether `pattern` asks for a date rather than a number.
    static bool describes(StringView pattern);
    /// `date` as "dd.MM.yyyy" with or without a time; for a pattern of M alone a number from 1 to 12 is a month as
    /// well. Anything else is appended as it is.
    void append(StringView date, String& out) const;

  private:
    String pattern_;
};

} // namespace kvtdruck::druckwerk
