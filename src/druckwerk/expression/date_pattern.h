// The patterns that dates are printed in.
#pragma once

#include "values/calendar.h"
#include "values/locale.h"

#include <vector>

namespace kvtdruck::druckwerk {

/// A date pattern such as "TT.MM.JJJJ", in German letters (T M J h m s) or English ones (d M y H m s); text in
/// quotes stands for itself. Days and months of three letters or more are German words.
class DatePattern {
  public:
    /// Raises a Fault with the reason where `pattern` is none.
    explicit DatePattern(StringView pattern);
    /// Whether `pattern` asks for a date rather than a number.
    static bool describes(StringView pattern);

    /// Whether it asks for a month and nothing else.
    bool isMonth() const { return parts_.size() == 1 && parts_[0].letter == u'M'; }

    /// A date of numbers alone with points between them has the order and the separator of `locale`; any other
    /// pattern stands as it is written.
    void append(Date date, const Locale& locale, String& out) const;

  private:
    struct Part {
        char16_t letter = 0; ///< one of d M y H m s; 0 for `text`
        std::size_t width = 0;
        String text = {};
    };
    void appendInOrder(const CalendarTime& time, const Locale& locale, String& out) const;
    static void appendPart(const Part& part, const CalendarTime& time, String& out);

    std::vector<Part> parts_;
    bool numeric_ = false; ///< days, months and years as numbers with points between them
};

} // namespace kvtdruck::druckwerk
