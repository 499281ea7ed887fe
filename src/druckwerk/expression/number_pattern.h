// The patterns that numbers are printed in.
#pragma once

#include "druckwerk/expression/number.h"

#include <vector>

namespace kvtdruck::druckwerk {

/// A number pattern in German notation, such as "#.##0,00;-#.##0,00;–". What it prints has the signs of a locale.
class NumberPattern {
  public:
    /// Raises a Fault with the reason where `pattern` is none.
    explicit NumberPattern(StringView pattern);
    void append(const Number& number, const Locale& locale, String& out) const;

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
    template <class Digits>
    static void appendDigits(const Part& part, Digits digits, int places, const Locale& locale, String& out);
    /// `number` has no sign any more, and as many decimals as are shown at most.
    static void appendExact(const Part& part, const Number& number, const Locale& locale, String& out);
    void appendLarge(const Number& number, const Locale& locale, String& out) const;
    std::vector<Part> parts_;
};

} // namespace kvtdruck::druckwerk
