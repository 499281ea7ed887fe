#include "druckwerk/expression/date_pattern.h"

#include "druckwerk/expression/number.h"

#include <algorithm>
#include <array>
#include <optional>

namespace kvtdruck::druckwerk {

namespace {

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

struct Calendar {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    int weekday() const { // 0 is Sunday
        static constexpr std::array<int, 12> kOffsets = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
        const int y = month < 3 ? year - 1 : year;
        return (y + y / 4 - y / 100 + y / 400 + kOffsets[static_cast<std::size_t>(month - 1)] + day) % 7;
    }
};

std::optional<Calendar> calendarOf(StringView text) {
    std::array<int, 6> values{};
    std::size_t count = 0;
    bool inNumber = false;
    for (const char16_t c : text) {
        if (isDigit(c)) {
            if (!inNumber && count++ == values.size())
                return std::nullopt;
            int& value = values[count - 1];
            if (value > 9999)
                return std::nullopt;
            value = value * 10 + (c - u'0');
            inNumber = true;
        } else if (c == u'.' || c == u':' || c == u' ') {
            inNumber = false;
        } else {
            return std::nullopt;
        }
    }
    const Calendar date{values[2], values[1], values[0], values[3], values[4], values[5]};
    if (count < 3 || date.day < 1 || date.day > 31 || date.month < 1 || date.month > 12 || date.year > 9999)
        return std::nullopt;
    return date;
}

/// The month that a number from 1 to 12 stands for.
std::optional<Calendar> monthOf(StringView text) {
    const Number number = Number::parse(text);
    if (!number.isNumber() || number.scale != 0 || number.digits < 1 || number.digits > 12)
        return std::nullopt;
    Calendar month;
    month.month = static_cast<int>(number.digits);
    return month;
}

void appendPadded(int value, std::size_t width, String& out) {
    const String digits = decimal(value);
    out.append(width > digits.size() ? width - digits.size() : 0, u'0');
    out += digits;
}

} // namespace

bool DatePattern::describes(StringView pattern) {
    return pattern.find_first_of(u"dMyHms") != StringView::npos && pattern.find_first_of(u"#0") == StringView::npos;
}

void DatePattern::append(StringView date, String& out) const {
    static constexpr std::array<StringView, 12> kMonths = {u"Januar",    u"Februar", u"März",     u"April",
                                                           u"Mai",       u"Juni",    u"Juli",     u"August",
                                                           u"September", u"Oktober", u"November", u"Dezember"};
    static constexpr std::array<StringView, 7> kDays = {u"Sonntag",    u"Montag",  u"Dienstag", u"Mittwoch",
                                                        u"Donnerstag", u"Freitag", u"Samstag"};
    auto found = calendarOf(date);
    if (!found && pattern_.find_first_not_of(u'M') == String::npos)
        found = monthOf(date);
    if (!found) {
        out += date;
        return;
    }
    for (std::size_t i = 0; i < pattern_.size();) {
        const char16_t c = pattern_[i];
        if (c == u'"' || c == u'\'') {
            const auto end = std::min(pattern_.find(c, i + 1), pattern_.size());
            out.append(pattern_, i + 1, end - i - 1);
            i = end + 1;
            continue;
        }
        const auto end = std::min(pattern_.find_first_not_of(c, i), pattern_.size());
        const std::size_t width = end - i;
        const StringView month = kMonths[static_cast<std::size_t>(found->month - 1)];
        const StringView day = kDays[static_cast<std::size_t>(found->weekday())];
        switch (c) {
        case u'd':
            width < 3 ? appendPadded(found->day, width, out)
                      : void(out += day.substr(0, width == 3 ? 2 : day.size()));
            break;
        case u'M':
            width < 3 ? appendPadded(found->month, width, out)
                      : void(out += month.substr(0, width == 3 ? 3 : month.size()));
            break;
        case u'y':
            appendPadded(width == 2 ? found->year % 100 : found->year, width, out);
            break;
        case u'H':
            appendPadded(found->hour, width, out);
            break;
        case u'm':
            appendPadded(found->minute, width, out);
            break;
        case u's':
            appendPadded(found->second, width, out);
            break;
        default:
            out.append(width, c);
        }
        i = end;
    }
}

} // namespace kvtdruck::druckwerk
