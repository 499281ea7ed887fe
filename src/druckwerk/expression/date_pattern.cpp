#include "druckwerk/expression/date_pattern.h"

#include "druckwerk/common/fault.h"

#include <algorithm>
#include <array>

namespace kvtdruck::druckwerk {

namespace {

struct Letter {
    char16_t written;
    char16_t meaning;
    std::size_t widest;
};
constexpr std::array<Letter, 10> kLetters = {{{u'd', u'd', 4},
                                              {u'T', u'd', 4},
                                              {u'M', u'M', 4},
                                              {u'y', u'y', 4},
                                              {u'J', u'y', 4},
                                              {u'H', u'H', 2},
                                              {u'h', u'H', 2},
                                              {u'm', u'm', 2},
                                              {u's', u's', 2},
                                              {u'S', u's', 2}}};

const Letter* letterOf(char16_t written) {
    const auto found =
        std::find_if(kLetters.begin(), kLetters.end(), [&](const Letter& it) { return it.written == written; });
    return found == kLetters.end() ? nullptr : &*found;
}

bool isQuote(char16_t c) {
    return c == u'"' || c == u'\'';
}

bool isLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c >= 0xc0;
}

void appendPadded(int value, std::size_t width, String& out) {
    const String digits = decimal(value);
    out.append(width > digits.size() ? width - digits.size() : 0, u'0');
    out += digits;
}

[[noreturn]] void fail(StringView pattern, const std::string& reason) {
    throw Fault(kLayoutInvalid, "Ungültiges Datumsformat „" + toUtf8(pattern) + "“: " + reason);
}

} // namespace

bool DatePattern::describes(StringView pattern) {
    bool quoted = false;
    bool date = false;
    for (const char16_t c : pattern) {
        if (c == u'"')
            quoted = !quoted;
        if (!quoted && (c == u'#' || c == u'0'))
            return false;
        date = date || (!quoted && letterOf(c) != nullptr);
    }
    return date;
}

DatePattern::DatePattern(StringView pattern) {
    for (std::size_t i = 0; i < pattern.size();) {
        const char16_t c = pattern[i];
        if (isQuote(c)) {
            const auto end = pattern.find(c, i + 1);
            if (end == StringView::npos)
                fail(pattern, "Anführungszeichen ohne Ende");
            parts_.push_back({0, 0, String(pattern.substr(i + 1, end - i - 1))});
            i = end + 1;
            continue;
        }
        const auto end = std::min(pattern.find_first_not_of(c, i), pattern.size());
        const std::size_t width = end - i;
        const Letter* letter = letterOf(c);
        if (letter == nullptr && isLetter(c))
            fail(pattern,
                 "„" + toUtf8(pattern.substr(i, 1)) +
                     "“ steht für keinen Teil eines Datums (T, M, J, h, m, s); Text steht in Anführungszeichen");
        if (letter != nullptr && (width > letter->widest || (letter->meaning == u'y' && width % 2 == 1)))
            fail(pattern, "„" + toUtf8(pattern.substr(i, width)) + "“ hat zu viele oder zu wenige Buchstaben");
        if (letter != nullptr)
            parts_.push_back({letter->meaning, width});
        else
            parts_.push_back({0, 0, String(pattern.substr(i, width))});
        i = end;
    }
    numeric_ = std::all_of(parts_.begin(), parts_.end(), [](const Part& part) {
        const bool number = part.letter == u'y' || ((part.letter == u'd' || part.letter == u'M') && part.width < 3);
        return number || (part.letter == 0 && part.text == u".");
    });
}

void DatePattern::append(Date date, const Locale& locale, String& out) const {
    const CalendarTime time = calendarTimeOf(date);
    if (numeric_ && locale.shortDate.find(u"d.M") == String::npos)
        appendInOrder(time, locale, out);
    else
        for (const Part& part : parts_)
            appendPart(part, time, out);
}

void DatePattern::appendInOrder(const CalendarTime& time, const Locale& locale, String& out) const {
    const auto separator = locale.shortDate.find_first_not_of(u"dMy");
    bool first = true;
    for (std::size_t i = 0; i < locale.shortDate.size(); ++i) {
        const char16_t letter = locale.shortDate[i];
        if (i > 0 && letter == locale.shortDate[i - 1])
            continue;
        const auto part = std::find_if(parts_.begin(), parts_.end(),
                                       [&](const Part& it) { return it.letter != 0 && it.letter == letter; });
        if (part == parts_.end())
            continue;
        if (!first && separator != String::npos)
            out += locale.shortDate[separator];
        first = false;
        appendPart(*part, time, out);
    }
}

void DatePattern::appendPart(const Part& part, const CalendarTime& time, String& out) {
    static constexpr std::array<StringView, 12> kMonths = {u"Januar",    u"Februar", u"März",     u"April",
                                                           u"Mai",       u"Juni",    u"Juli",     u"August",
                                                           u"September", u"Oktober", u"November", u"Dezember"};
    static constexpr std::array<StringView, 7> kDays = {u"Sonntag",    u"Montag",  u"Dienstag", u"Mittwoch",
                                                        u"Donnerstag", u"Freitag", u"Samstag"};
    const auto month = static_cast<unsigned>(time.date.month());
    const auto appendName = [&](StringView name, std::size_t shortened) {
        out += name.substr(0, part.width == 3 ? shortened : name.size());
    };
    switch (part.letter) {
    case u'd':
        if (part.width < 3)
            appendPadded(static_cast<int>(static_cast<unsigned>(time.date.day())), part.width, out);
        else
            appendName(kDays[std::chrono::weekday(std::chrono::sys_days(time.date)).c_encoding()], 2);
        return;
    case u'M':
        if (part.width < 3)
            appendPadded(static_cast<int>(month), part.width, out);
        else
            appendName(kMonths[month - 1], 3);
        return;
    case u'y': {
        const int year = static_cast<int>(time.date.year());
        return appendPadded(part.width == 2 ? year % 100 : year, part.width, out);
    }
    case u'H':
        return appendPadded(time.hour, part.width, out);
    case u'm':
        return appendPadded(time.minute, part.width, out);
    case u's':
        return appendPadded(time.second, part.width, out);
    default:
        out += part.text;
    }
}

} // namespace kvtdruck::druckwerk
