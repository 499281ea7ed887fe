#include "values/conversion.h"

#include "values/characters.h"

#include <algorithm>
#include <array>
#include <vector>

namespace kvtdruck {
namespace {

/// Takes up to `limit` numbers, each followed by one of `separators` but for the last, off the front of `text`.
std::vector<int> takeNumbers(StringView& text, StringView separators, std::size_t limit) {
    std::vector<int> numbers;
    while (!text.empty() && isDigit(text.front())) {
        int number = 0;
        for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1))
            number = std::min(number * 10 + (text.front() - u'0'), 100000);
        numbers.push_back(number);
        const bool goesOn = text.size() > 1 && separators.find(text[0]) != StringView::npos && isDigit(text[1]);
        if (!goesOn || numbers.size() == limit)
            break;
        text.remove_prefix(1);
    }
    return numbers;
}

std::optional<Date> calendarDay(const std::vector<int>& numbers, bool fourDigitsFirst, const Locale& locale) {
    if (numbers.size() != 3)
        return std::nullopt;
    const auto place = [&](char16_t letter) { return locale.shortDate.find(letter); };
    std::array<int, 3> dayMonthYear{numbers[0], numbers[1], numbers[2]};
    if (fourDigitsFirst || place(u'y') < place(u'd'))
        dayMonthYear = {numbers[2], numbers[1], numbers[0]};
    else if (place(u'M') < place(u'd'))
        dayMonthYear = {numbers[1], numbers[0], numbers[2]};
    auto [day, month, year] = dayMonthYear;
    if (year < 100)
        year += year < 30 ? 2000 : 1900;
    return dayIfAny(year, month, day);
}

/// The fraction of a day that hour, minute and second make, `text` being what follows them (am, pm or nothing).
std::optional<double> timeOfDay(const std::vector<int>& numbers, StringView text, const Locale& locale) {
    if (numbers.size() < 2)
        return std::nullopt;
    int hour = numbers[0];
    const int second = numbers.size() > 2 ? numbers[2] : 0;
    const bool afternoon = !locale.pm.empty() && text == locale.pm;
    if (afternoon || (!locale.am.empty() && text == locale.am)) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (afternoon ? 12 : 0);
    } else if (!text.empty()) {
        return std::nullopt;
    }
    if (hour > 23 || numbers[1] > 59 || second > 59)
        return std::nullopt;
    return (hour * 3600 + numbers[1] * 60 + second) / 86400.0;
}

} // namespace

std::optional<Date> dateIn(StringView text, const Locale& locale) {
    StringView rest = trimmed(text);
    const bool timeAlone = rest.substr(0, 3).find(u':') != StringView::npos;
    Date date;
    if (!timeAlone) {
        const bool fourDigitsFirst =
            std::all_of(rest.begin(), rest.begin() + std::min<std::ptrdiff_t>(4, std::ssize(rest)), isDigit);
        const auto day = calendarDay(takeNumbers(rest, u".-/ ", 3), fourDigitsFirst, locale);
        if (!day)
            return std::nullopt;
        date = *day;
        if (rest.empty())
            return date;
        if (rest.front() != u' ')
            return std::nullopt;
        rest = trimmed(rest);
    }
    const std::vector<int> clock = takeNumbers(rest, u":", 3);
    const auto time = timeOfDay(clock, trimmed(rest), locale);
    if (!time)
        return std::nullopt;
    return Date{date.days < 0 ? date.days - *time : date.days + *time};
}

} // namespace kvtdruck
