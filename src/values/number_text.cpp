#include "values/conversion.h"

#include "values/runtime_error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace kvtdruck {

namespace {

// ---- numbers as text
// -----------------------------------------------------------------------------------------------

/// A decimal number: 0.d1d2d3… times ten to the power of `point`; no digits for zero.
struct Digits {
    std::string digits;
    int point = 0;
    bool negative = false;
};

void removeTrailingZeros(std::string& digits) {
    digits.erase(digits.find_last_not_of('0') + 1);
}

/// Adds one unit in the last place.
void increment(Digits& number) {
    std::string& digits = number.digits;
    const auto nines = digits.find_last_not_of('9') + 1;
    std::fill(digits.begin() + static_cast<std::ptrdiff_t>(nines), digits.end(), '0');
    if (nines > 0) {
        ++digits[nines - 1];
        return;
    }
    digits.front() = '1';
    ++number.point;
}

/// The digits of the finite `number`: `places` of them behind the first, rounded, or where `places` is empty as few
/// as tell it from its neighbours.
template <class Real>
Digits realDigits(Real number, std::optional<int> places) {
    std::array<char, 100> buffer{};
    char* const begin = buffer.data();
    const auto form = std::chars_format::scientific;
    const auto written = places ? std::to_chars(begin, begin + buffer.size(), std::abs(number), form, *places)
                                : std::to_chars(begin, begin + buffer.size(), std::abs(number), form);
    const std::string_view text(begin, static_cast<std::size_t>(written.ptr - begin));
    const std::size_t mantissa = text.find('e');
    Digits result;
    result.digits = text.substr(0, 1);
    if (mantissa > 1)
        result.digits += text.substr(2, mantissa - 2);
    std::from_chars(text.data() + mantissa + 2, text.data() + text.size(), result.point);
    result.point = (text[mantissa + 1] == '-' ? -result.point : result.point) + 1;
    result.negative = number < 0;
    return result;
}

/// The finite `number` rounded to `count` significant digits, halves away from zero, as Automation rounds.
template <class Real>
Digits significantDigits(Real number, std::size_t count) {
    // A number that few digits tell from its neighbours has these digits: most amounts are done here.
    if (count <= std::numeric_limits<Real>::digits10 && std::isnormal(number))
        if (Digits shortest = realDigits(number, std::nullopt); shortest.digits.size() <= count)
            return shortest;
    // Three more digits tell on which side of a half the rest lies, unless they show the half itself: then many do.
    Digits result = realDigits(number, static_cast<int>(count) + 2);
    if (result.digits.ends_with("500"))
        result = realDigits(number, 60);
    const bool up = result.digits[count] >= '5';
    result.digits.resize(count);
    if (up)
        increment(result);
    removeTrailingZeros(result.digits);
    return result;
}

void append(String& text, std::string_view ascii) {
    for (const char letter : ascii)
        text += static_cast<char16_t>(letter);
}

/// "123,45", "0,00012", "12300": all digits, with zeros where the number is larger or smaller than they show.
String plainForm(const Digits& number, const Locale& locale) {
    const int count = static_cast<int>(number.digits.size());
    const std::string_view digits = number.digits;
    const auto whole = static_cast<std::size_t>(std::max(number.point, 0));
    const int places = std::max(count - number.point, 0);
    String text;
    text.reserve(static_cast<std::size_t>(std::max(number.point, 1) + places) + (number.negative ? 1 : 0) +
                 (places > 0 ? 1 : 0));
    if (number.negative && count > 0)
        text += u'-';
    if (number.point <= 0)
        text += u'0';
    append(text, digits.substr(0, whole));
    text.append(static_cast<std::size_t>(std::max(number.point - count, 0)), u'0');
    if (places > 0) {
        text += locale.decimalSign;
        text.append(static_cast<std::size_t>(std::max(-number.point, 0)), u'0');
        append(text, digits.substr(whole));
    }
    return text;
}

/// "1E+15", "-1,5E-05": the exponent has at least two digits.
String exponentForm(const Digits& number, const Locale& locale) {
    String text = number.negative ? u"-" : u"";
    text += static_cast<char16_t>(number.digits[0]);
    if (number.digits.size() > 1)
        append(text += locale.decimalSign, std::string_view(number.digits).substr(1));
    const int exponent = number.point - 1;
    text += exponent < 0 ? u"E-" : u"E+";
    if (std::abs(exponent) < 10)
        text += u'0';
    return text + decimal(std::abs(exponent));
}

/// The texts that the run-time library of Automation's time gave what is no number.
String notFinite(bool isNan, bool negative, const Locale& locale) {
    String text = negative ? u"-1" : u"1";
    text += locale.decimalSign;
    return text + (!isNan ? u"#INF" : negative ? u"#IND" : u"#QNAN");
}

/// The text of `units` divided by ten to the power of `scale`, without trailing zeros behind the decimal sign.
String fixedPointText(std::string units, int scale, bool negative, const Locale& locale) {
    Digits number{std::move(units), 0, negative};
    number.digits.erase(0, std::min(number.digits.find_first_not_of('0'), number.digits.size()));
    number.point = static_cast<int>(number.digits.size()) - scale;
    removeTrailingZeros(number.digits);
    return number.digits.empty() ? String(u"0") : plainForm(number, locale);
}

/// The number in ten-thousandths, where it is the one nearest to such an amount: as most numbers are. At most 15
/// digits tell it from every other, so they are its text.
std::optional<std::int64_t> tenThousandths(double number) {
    constexpr double kPart = 10'000;
    if (std::abs(number) >= 1e15 / kPart)
        return std::nullopt;
    const auto units = static_cast<std::int64_t>(number * kPart + std::copysign(0.5, number));
    return static_cast<double>(units) / kPart == number ? std::optional(units) : std::nullopt;
}

template <class Real>
String realText(Real number, const Locale& locale) {
    constexpr int significant = std::is_same_v<Real, float> ? 7 : 15;
    if (!std::isfinite(number))
        return notFinite(std::isnan(number), std::signbit(number), locale);
    if (number == 0)
        return u"0";
    if constexpr (std::is_same_v<Real, double>)
        if (const auto units = tenThousandths(number))
            return fixedPointText(std::to_string(std::abs(*units)), 4, number < 0, locale);
    const Digits digits = significantDigits(number, significant);
    const bool fits = digits.point > -4 && digits.point <= significant;
    return fits ? plainForm(digits, locale) : exponentForm(digits, locale);
}

/// The decimal digits of a 96-bit integer.
std::string integerDigits(std::uint32_t high, std::uint64_t low) {
    std::array<std::uint32_t, 3> words{high, static_cast<std::uint32_t>(low >> 32),
                                       static_cast<std::uint32_t>(low)};
    std::string reversed;
    while (words != std::array<std::uint32_t, 3>{}) {
        std::uint64_t remainder = 0;
        for (std::uint32_t& word : words) {
            const std::uint64_t dividend = (remainder << 32) | word;
            word = static_cast<std::uint32_t>(dividend / 10);
            remainder = dividend % 10;
        }
        reversed += static_cast<char>('0' + remainder);
    }
    return {reversed.rbegin(), reversed.rend()};
}

// ---- dates as text
// -------------------------------------------------------------------------------------------------

constexpr std::chrono::sys_days dayZero{std::chrono::year{1899} / 12 / 30};
constexpr double firstDay = -657434; // 1 January 100
constexpr double lastDay = 2958465;  // 31 December 9999

struct CalendarTime {
    std::chrono::year_month_day date;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// Splits a date into calendar day and time of day, rounded to the second. The tiny addition makes up for fractions
/// of a day that binary numbers can't hold; half a second is still rounded down, as Automation does it.
CalendarTime calendarTime(Date date) {
    const double day = std::trunc(date.days);
    const double seconds = std::min(std::abs(date.days - day) + 1e-11, 1.0) * 86400;
    const int whole = static_cast<int>(std::ceil(seconds - 0.5));
    CalendarTime time;
    time.date = dayZero + std::chrono::days{static_cast<int>(day) + whole / 86400};
    time.hour = whole / 3600 % 24;
    time.minute = whole / 60 % 60;
    time.second = whole % 60;
    return time;
}

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

// ---- text as number
// ------------------------------------------------------------------------------------------------

bool isBlank(char16_t unit) {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == 0xA0 || (unit >= 0x2000 && unit <= 0x200A) ||
           unit == 0x202F || unit == 0x3000;
}

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

/// Reads a number the way Automation does: symbols in front in any order, the digits, symbols behind.
class NumberReader {
  public:
    NumberReader(StringView text, const Locale& locale) : rest_(text), locale_(locale) {}

    std::optional<double> read() {
        readSymbolsInFront();
        const std::optional<double> magnitude = take(u"&H") || take(u"&h")   ? readPowerOfTwoBase(4)
                                                : take(u"&O") || take(u"&o") ? readPowerOfTwoBase(3)
                                                                             : readDecimal();
        if (!magnitude || !readSymbolsBehind())
            return std::nullopt;
        return minus_ || parenthesis_ ? -*magnitude : *magnitude;
    }

  private:
    bool take(StringView symbol) {
        if (symbol.empty() || !rest_.starts_with(symbol))
            return false;
        rest_.remove_prefix(symbol.size());
        return true;
    }

    /// Takes a symbol that may stand once only.
    bool takeOnce(StringView symbol, bool& taken) { return !taken && (taken = take(symbol)); }

    bool takeBlank() {
        if (rest_.empty() || !isBlank(rest_.front()))
            return false;
        rest_.remove_prefix(1);
        return true;
    }

    /// A separator that is a no-break blank of some kind may be typed as an ordinary blank between digits.
    bool takeThousandsSeparator() {
        const StringView separator = locale_.thousandsSeparator;
        if (take(separator))
            return true;
        const bool blankSeparator = separator.size() == 1 && isBlank(separator.front());
        return blankSeparator && rest_.size() > 1 && isBlank(rest_[0]) && isDigit(rest_[1]) && takeBlank();
    }

    void readSymbolsInFront() {
        while (takeBlank() || takeOnce(u"+", plus_) || takeOnce(u"-", minus_) ||
               takeOnce(locale_.currencySymbol, currency_) || takeOnce(u"(", parenthesis_)) {
        }
    }

    /// Whether only such symbols as may follow stand behind the number.
    bool readSymbolsBehind() {
        bool closed = !parenthesis_;
        while (takeBlank() || takeOnce(u"+", plus_) || takeOnce(u"-", minus_) ||
               takeOnce(locale_.currencySymbol, currency_) || takeOnce(u")", closed)) {
        }
        return closed && rest_.empty();
    }

    std::optional<double> readDecimal() {
        std::string digits;
        bool anyDigit = false;
        bool decimals = false;
        int exponent = 0;
        while (!rest_.empty()) {
            if (isDigit(rest_.front())) {
                anyDigit = true;
                digits += static_cast<char>(rest_.front());
                exponent -= decimals ? 1 : 0;
                rest_.remove_prefix(1);
            } else if (!takeThousandsSeparator() && !takeOnce(locale_.decimalSign, decimals)) {
                break;
            }
        }
        if (!anyDigit || !readExponent(exponent))
            return std::nullopt;
        return valueOf(digits, exponent);
    }

    /// Adds the exponent, where there is one, to `exponent`; false where it has no digits.
    bool readExponent(int& exponent) {
        if (!take(u"E") && !take(u"e"))
            return true;
        const bool negative = take(u"-");
        if (!negative)
            take(u"+");
        if (rest_.empty() || !isDigit(rest_.front()))
            return false;
        constexpr int beyondEveryNumber = 1'000'000;
        int size = 0;
        for (; !rest_.empty() && isDigit(rest_.front()); rest_.remove_prefix(1))
            size = std::min(size * 10 + (rest_.front() - u'0'), beyondEveryNumber);
        exponent += negative ? -size : size;
        return true;
    }

    /// `digits` times ten to the power of `exponent`, correctly rounded; infinity where it is too large.
    static double valueOf(std::string digits, int exponent) {
        digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
        if (digits.empty())
            return 0;
        const int magnitude = static_cast<int>(digits.size()) + exponent;
        digits += 'e' + std::to_string(exponent);
        double value = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), value);
        return value;
    }

    /// An unsigned number of up to 64 bits, `bits` bits a digit; infinity where there are more.
    std::optional<double> readPowerOfTwoBase(int bits) {
        std::string digits;
        while (!rest_.empty() && rest_.front() < 0x80) {
            digits += static_cast<char>(rest_.front());
            rest_.remove_prefix(1);
        }
        std::uint64_t value = 0;
        const char* const begin = digits.data();
        const auto [end, error] = std::from_chars(begin, begin + digits.size(), value, 1 << bits);
        if (end == begin)
            return std::nullopt;
        unread(static_cast<std::size_t>(begin + digits.size() - end));
        return error == std::errc() ? static_cast<double>(value) : std::numeric_limits<double>::infinity();
    }

    void unread(std::size_t count) { rest_ = StringView(rest_.data() - count, rest_.size() + count); }

    StringView rest_;
    const Locale& locale_;
    bool plus_ = false;
    bool minus_ = false;
    bool currency_ = false;
    bool parenthesis_ = false;
};

// ---- text as date
// --------------------------------------------------------------------------------------------------

/// Takes up to `limit` numbers, each followed by one of `separators` but for the last, off the front of `text`.
std::vector<int> takeNumbers(StringView& text, StringView separators, std::size_t limit) {
    std::vector<int> numbers;
    while (numbers.size() < limit && !text.empty() && isDigit(text.front())) {
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
    const std::chrono::year_month_day date{std::chrono::year{year},
                                           std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok() || year > 9999)
        return std::nullopt;
    return dateOf(year, month, day);
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

CalendarTime checkedCalendarTime(Date date) {
    if (!(date.days > firstDay - 1 && date.days < lastDay + 1))
        throw RuntimeError(ErrorNumber::Overflow);
    return calendarTime(date);
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

String textOf(double number, const Locale& locale) {
    return realText(number, locale);
}

String textOf(float number, const Locale& locale) {
    return realText(number, locale);
}

String textOf(Currency amount, const Locale& locale) {
    const auto bits = static_cast<std::uint64_t>(amount.tenThousandths);
    const bool negative = amount.tenThousandths < 0;
    return fixedPointText(integerDigits(0, negative ? 0 - bits : bits), 4, negative, locale);
}

String textOf(const Decimal& number, const Locale& locale) {
    return fixedPointText(integerDigits(number.high, number.low), number.scale, number.negative, locale);
}

String shortDateOf(Date date, const Locale& locale) {
    return formatted(locale.shortDate, checkedCalendarTime(date), locale);
}

String textOf(Date date, const Locale& locale) {
    const CalendarTime time = checkedCalendarTime(date);
    const double day = std::trunc(date.days);
    if (day == 0)
        return formatted(locale.time, time, locale);
    String text = formatted(locale.shortDate, time, locale);
    if (std::abs(date.days - day) >= 1e-12)
        text += u' ' + formatted(locale.time, time, locale);
    return text;
}

std::optional<double> numberIn(StringView text, const Locale& locale) {
    return NumberReader(text, locale).read();
}

Date dateOf(int year, int month, int day, int hour, int minute, int second) {
    const std::chrono::year_month_day date{std::chrono::year{year},
                                           std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    const auto days = static_cast<double>((std::chrono::sys_days{date} - dayZero).count());
    const double time = (hour * 3600 + minute * 60 + second) / 86400.0;
    return {days < 0 ? days - time : days + time};
}

} // namespace kvtdruck
