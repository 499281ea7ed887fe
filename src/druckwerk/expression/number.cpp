#include "druckwerk/expression/number.h"

#include "druckwerk/common/fault.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>

namespace kvtdruck::druckwerk {

namespace {

constexpr int kMaximumDigits = 18;

constexpr std::array<double, kMaximumDigits + 1> kPowers = {
    1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};

constexpr std::array<std::int64_t, kMaximumDigits + 1> kIntegerPowers = [] {
    std::array<std::int64_t, kMaximumDigits + 1> powers{};
    powers[0] = 1;
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}();

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

/// Whether the points of `integer` stand between groups of three digits.
bool isGrouped(StringView integer) {
    auto group = integer.find(u'.');
    if (group == 0 || group == StringView::npos || group > 3)
        return false;
    for (; group < integer.size(); group += 4)
        if (integer[group] != u'.' || group + 4 > integer.size() ||
            !std::all_of(integer.begin() + static_cast<std::ptrdiff_t>(group) + 1,
                         integer.begin() + static_cast<std::ptrdiff_t>(group) + 4, isDigit))
            return false;
    return true;
}

/// The rarer spellings: separators, exponents, more digits than fit.
Number parseSlowly(StringView text) {
    Number none;
    none.kind = Number::Kind::None;
    text = trimmed(text);
    if (text.empty() || text.size() > 400)
        return none;
    const auto comma = text.find(u',');
    const auto digitsBegin = text.find_first_of(u"0123456789.");
    const auto integer =
        digitsBegin == StringView::npos ? StringView() : text.substr(digitsBegin, comma - digitsBegin);
    const bool pointsSeparate = comma != StringView::npos || isGrouped(integer);
    std::string plain;
    for (const char16_t c : text) {
        if (c == u'.' && pointsSeparate)
            continue;
        if (c > 0x7e)
            return none;
        plain += c == u',' ? '.' : static_cast<char>(c);
    }
    const char* begin = plain.c_str() + (plain[0] == '+' ? 1 : 0);
    const char* end = plain.c_str() + plain.size();
    double value = 0;
    const auto [rest, error] = std::from_chars(begin, end, value);
    if (error != std::errc() || rest != end || !std::isfinite(value))
        return none;
    return Number::of(value);
}

} // namespace

Number Number::parse(StringView text) {
    Number number;
    if (text.empty())
        return number;
    std::size_t at = text[0] == u'-' ? 1 : 0;
    const std::size_t first = at;
    std::int64_t digits = 0;
    std::size_t comma = 0;
    for (; at < text.size(); ++at) {
        const char16_t c = text[at];
        if (isDigit(c))
            digits = digits * 10 + (c - u'0');
        else if (c == u',' && comma == 0 && at > first)
            comma = at + 1;
        else
            return parseSlowly(text);
        if (at - first >= kMaximumDigits)
            return parseSlowly(text);
    }
    if (first == at || comma == at)
        return parseSlowly(text);
    number.kind = Kind::Exact;
    number.digits = first != 0 ? -digits : digits;
    number.scale = comma != 0 ? static_cast<int>(at - comma) : 0;
    number.value = static_cast<double>(number.digits) / kPowers[static_cast<std::size_t>(number.scale)];
    return number;
}

Number Number::of(double value) {
    Number number;
    number.value = value;
    number.kind = std::isfinite(value) ? Kind::Large : Kind::None;
    if (number.kind == Kind::None || std::fabs(value) >= 1e15)
        return number;
    std::array<char, 40> buffer{};
    const auto written =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific, 14);
    const char* mark = std::find(buffer.data(), written.ptr, 'e');
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), written.ptr, exponent);
    std::int64_t digits = 0;
    for (const char* c = buffer.data(); c != mark; ++c)
        if (*c >= '0' && *c <= '9')
            digits = digits * 10 + (*c - '0');
    int scale = 14 - exponent;
    for (; scale > 0 && digits != 0 && digits % 10 == 0; --scale)
        digits /= 10;
    for (; scale > kMaximumDigits; --scale)
        digits /= 10;
    if (digits == 0)
        scale = 0;
    number.kind = Kind::Exact;
    number.digits = buffer[0] == '-' ? -digits : digits;
    number.scale = scale;
    return number;
}

namespace {

/// digits / 10^scale
struct Magnitude {
    std::int64_t digits;
    int scale;
};

/// The number without its sign, as a percentage where asked for, with at most `decimals`; halves are rounded up.
Magnitude rounded(const Number& number, bool percent, int decimals) {
    Magnitude result{number.digits < 0 ? -number.digits : number.digits, number.scale - (percent ? 2 : 0)};
    const int surplus = result.scale - decimals;
    if (surplus <= 0)
        return result;
    const std::int64_t divisor = surplus <= kMaximumDigits ? kIntegerPowers[static_cast<std::size_t>(surplus)] : 0;
    result.digits = divisor == 0 ? 0 : result.digits / divisor + (result.digits % divisor * 2 >= divisor ? 1 : 0);
    result.scale = decimals;
    return result;
}

/// Writes all digits in front of `end`, the last `decimals` of them behind the comma; gives the first one.
char* writeDigits(Magnitude number, int decimals, char* end) {
    char* begin = end;
    if (number.digits != 0)
        for (int i = number.scale; i < decimals; ++i)
            *--begin = '0';
    for (; number.digits != 0; number.digits /= 10)
        *--begin = static_cast<char>('0' + number.digits % 10);
    while (end - begin < decimals)
        *--begin = '0';
    return begin;
}

} // namespace

/// Reads one part of a pattern sign by sign: what stands in front of the digits, the digits, what stands behind.
class NumberPattern::PartReader {
  public:
    PartReader(StringView text, StringView pattern) : text_(text), pattern_(pattern) {}

    Part read() {
        while (at_ < text_.size())
            take(text_[at_++]);
        if (quoted_)
            fail("Anführungszeichen ohne Ende");
        if (part_.maximumDecimals > 15 || part_.integerDigits > 15)
            fail("mehr als 15 Stellen");
        return part_;
    }

  private:
    [[noreturn]] void fail(const char* reason) const {
        throw Fault(kLayoutInvalid, "Ungültiges Zahlenformat „" + toUtf8(pattern_) + "“: " + reason);
    }

    void take(char16_t c) {
        const bool place = !quoted_ && (c == u'#' || c == u'0');
        const bool sign = !quoted_ && (c == u'.' || c == u',') && part_.hasDigits && !closed_;
        if (c == u'"')
            quoted_ = !quoted_;
        else if (place)
            takePlace(c);
        else if (sign)
            takeSign(c);
        else
            takeText(c);
    }

    void takePlace(char16_t c) {
        if (closed_)
            fail("Ziffern an zwei Stellen");
        part_.hasDigits = true;
        if (decimals_) {
            if (c == u'0' && part_.minimumDecimals != part_.maximumDecimals)
                fail("# vor 0 hinter dem Komma");
            ++part_.maximumDecimals;
            part_.minimumDecimals += c == u'0' ? 1 : 0;
        } else if (c == u'0') {
            ++part_.integerDigits;
        } else if (part_.integerDigits > 0) {
            fail("# hinter 0");
        }
    }

    void takeSign(char16_t c) {
        if (decimals_)
            fail(c == u',' ? "zwei Kommas" : "Punkt hinter dem Komma");
        (c == u',' ? decimals_ : part_.grouped) = true;
    }

    void takeText(char16_t c) {
        closed_ = part_.hasDigits;
        if (c == u'\\' && !quoted_ && at_ < text_.size())
            c = text_[at_++];
        else if (c == u'%' && !quoted_)
            part_.percent = true;
        (part_.hasDigits ? part_.suffix : part_.prefix) += c;
    }

    StringView text_;
    StringView pattern_;
    std::size_t at_ = 0;
    Part part_;
    bool decimals_ = false;
    bool closed_ = false;
    bool quoted_ = false;
};

NumberPattern::NumberPattern(StringView pattern) {
    std::size_t begin = 0;
    bool quoted = false;
    for (std::size_t i = 0; i <= pattern.size(); ++i) {
        if (i < pattern.size() && pattern[i] == u'"')
            quoted = !quoted;
        if (i == pattern.size() || (pattern[i] == u';' && !quoted)) {
            parts_.push_back(PartReader(pattern.substr(begin, i - begin), pattern).read());
            begin = i + 1;
        }
    }
    if (parts_.size() > 3)
        throw Fault(kLayoutInvalid, "Ungültiges Zahlenformat „" + toUtf8(pattern) + "“: mehr als drei Teile");
    if (!parts_[0].hasDigits)
        throw Fault(kLayoutInvalid,
                    "Ungültiges Zahlenformat „" + toUtf8(pattern) + "“: keine Ziffernstelle (# oder 0)");
}

void NumberPattern::appendDigits(const Part& part, const char* digits, int count, int decimals, String& out) {
    const int integers = count - decimals;
    for (int i = std::max(integers, part.integerDigits); i > 0; --i) {
        out += i > integers ? u'0' : static_cast<char16_t>(digits[integers - i]);
        if (part.grouped && i > 1 && (i - 1) % 3 == 0)
            out += u'.';
    }
    int shown = decimals;
    while (shown > part.minimumDecimals && digits[integers + shown - 1] == '0')
        --shown;
    if (shown > 0)
        out += u',';
    for (int i = 0; i < shown; ++i)
        out += static_cast<char16_t>(digits[integers + i]);
}

void NumberPattern::appendLarge(const Number& number, String& out) const {
    const Part& part = parts_[number.value < 0 && parts_.size() > 1 ? 1 : 0];
    if (number.value < 0 && parts_.size() == 1)
        out += u'-';
    out += part.prefix;
    if (part.hasDigits) {
        std::array<char, 400> buffer{};
        const double shown = std::fabs(number.value) * (part.percent ? 100 : 1);
        const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), shown,
                                           std::chars_format::fixed, part.maximumDecimals);
        char* end = std::remove(buffer.data(), written.ptr, '.');
        appendDigits(part, buffer.data(), static_cast<int>(end - buffer.data()), part.maximumDecimals, out);
    }
    out += part.suffix;
}

void NumberPattern::append(const Number& number, String& out) const {
    if (number.kind == Number::Kind::Large) {
        appendLarge(number, out);
        return;
    }
    const Part& first = parts_[number.digits < 0 && parts_.size() > 1 && parts_[1].hasDigits ? 1 : 0];
    const int decimals = first.maximumDecimals;
    const auto shown = rounded(number, first.percent, decimals);
    const bool negative = number.digits < 0 && shown.digits != 0;
    const Part& part = parts_[negative && parts_.size() > 1 ? 1 : shown.digits == 0 && parts_.size() > 2 ? 2 : 0];
    if (negative && parts_.size() == 1)
        out += u'-';
    out += part.prefix;
    if (part.hasDigits) {
        std::array<char, 64> buffer;
        char* const end = buffer.data() + buffer.size();
        const char* const begin = writeDigits(shown, decimals, end);
        appendDigits(part, begin, static_cast<int>(end - begin), decimals, out);
    }
    out += part.suffix;
}

namespace {

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
