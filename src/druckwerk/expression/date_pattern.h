// The patterns that dates are printed in.
#pragma once

#include "values/text.h"

namespace kvtdruck::druckwerk {

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
