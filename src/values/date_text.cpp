#include "values/conversion.h"

#include <algorithm>
#include <cmath>

namespace kvtdruck {
namespace {

void appendPadded(String& text, int number, std::size_t width) {
    const String digits = decimal(number);
    text.append(width - std::min(width, digits.size()), u'0');
    text += digits;
}

/// One run of a pattern's letter, as long as `count`; false where the letter is none of a pattern's.
bool appendPatternPart(String& text, char16_t letter, std::size_t count, const CalendarTime& time,
                       const Locale& locale) {
    const std::size_t width = std::min<std::size_t>(count, 2);
    const int year = static_cast<int>(time.date.year());
    switch (letter) {
    case u'd':
        appendPadded(text, static_cast<int>(static_cast<unsigned>(time.date.day())), width);
        return true;
    case u'M':
        appendPadded(text, static_cast<int>(static_cast<unsigned>(time.date.month())), width);
        return true;
    case u'y':
        appendPadded(text, count > 2 ? year : year % 100, width);
        return true;
    case u'H':
        appendPadded(text, time.hour, width);
        return true;
    case u'h':
        appendPadded(text, (time.hour + 11) % 12 + 1, width);
        return true;
    case u'm':
        appendPadded(text, time.minute, width);
        return true;
    case u's':
        appendPadded(text, time.second, width);
        return true;
    case u't': {
        const String& word = time.hour < 12 ? locale.am : locale.pm;
        text += count > 1 ? word : word.substr(0, 1);
        return true;
    }
    default:
        return false;
    }
}

String formatted(StringView pattern, const CalendarTime& time, const Locale& locale) {
    String text;
    for (std::size_t position = 0; position < pattern.size();) {
        const char16_t letter = pattern[position];
        if (letter == u'\'') {
            const std::size_t end = std::min(pattern.find(u'\'', position + 1), pattern.size());
            text += pattern.substr(position + 1, end - position - 1);
            position = end + 1;
            continue;
        }
        const std::size_t count = std::min(pattern.find_first_not_of(letter, position), pattern.size()) - position;
        if (!appendPatternPart(text, letter, count, time, locale))
            text.append(count, letter);
        position += count;
    }
    return text;
}

} // namespace

String shortDateOf(Date date, const Locale& locale) {
    return formatted(locale.shortDate, calendarTimeOf(date), locale);
}

String textOf(Date date, const Locale& locale) {
    const CalendarTime time = calendarTimeOf(date);
    const double day = std::trunc(date.days);
    if (day == 0)
        return formatted(locale.time, time, locale);
    String text = formatted(locale.shortDate, time, locale);
    if (std::abs(date.days - day) >= 1e-12)
        text += u' ' + formatted(locale.time, time, locale);
    return text;
}

} // namespace kvtdruck
