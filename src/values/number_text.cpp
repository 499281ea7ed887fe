#include "values/conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace kvtdruck {
namespace {

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
    result.digits.assign(1, text.front());
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
    if (number.negative)
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

/// Whole numbers below ten millions are told by 7 digits, as are most that a float holds.
std::optional<std::int64_t> wholeInTenThousandths(float number) {
    const bool whole = std::abs(number) < 1e7F && std::trunc(number) == number;
    return whole ? std::optional(static_cast<std::int64_t>(number) * 10'000) : std::nullopt;
}

/// Writes the digits of `number` before `end`, at least `count`, and gives the first one's place.
char16_t* writeDigits(char16_t* end, std::uint64_t number, int count) {
    const auto write = [&](auto& rest) {
        *--end = static_cast<char16_t>(u'0' + rest % 10);
        rest /= 10;
        --count;
    };
    while (number > std::numeric_limits<std::uint32_t>::max())
        write(number);
    auto rest = static_cast<std::uint32_t>(number); // a 32-bit processor divides by words
    while (rest != 0 || count > 0)
        write(rest);
    return end;
}

/// Appends ten-thousandths as a number, without zeros at the end of its decimals. Most of what is printed comes
/// here, so it is written in one go.
void appendTenThousandths(String& text, std::int64_t units, const Locale& locale) {
    constexpr unsigned kWhole = 10'000;
    // Three characters on Windows (https://learn.microsoft.com/windows/win32/intl/locale-sdecimal).
    constexpr std::size_t kLongestSign = 8;
    const auto bits = static_cast<std::uint64_t>(units);
    const auto magnitude = units < 0 ? 0 - bits : bits;
    const auto whole = magnitude / kWhole;
    auto part = static_cast<std::uint32_t>(magnitude - whole * kWhole);
    std::array<char16_t, 24 + kLongestSign> buffer;
    char16_t* const end = buffer.data() + buffer.size();
    char16_t* begin = end;
    if (part != 0) {
        int places = 4;
        for (; part % 10 == 0; part /= 10)
            --places;
        begin = writeDigits(begin, part, places);
        for (std::size_t i = std::min(locale.decimalSign.size(), kLongestSign); i > 0;)
            *--begin = locale.decimalSign[--i];
    }
    begin = writeDigits(begin, whole, 1);
    if (units < 0)
        *--begin = u'-';
    text.append(begin, static_cast<std::size_t>(end - begin));
}

/// Appends a number that has no short way of its own, to so many significant digits.
template <class Real>
void appendReal(String& text, Real number, int significant, const Locale& locale) {
    if (!std::isfinite(number)) {
        text += notFinite(std::isnan(number), std::signbit(number), locale);
        return;
    }
    const Digits digits = significantDigits(number, static_cast<std::size_t>(significant));
    const bool fits = digits.point > -4 && digits.point <= significant;
    text += fits ? plainForm(digits, locale) : exponentForm(digits, locale);
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

} // namespace

std::optional<std::int64_t> tenThousandths(double number) {
    constexpr double kPart = 10'000;
    if (!(std::abs(number) < 1e15 / kPart)) // or no number at all
        return std::nullopt;
    const auto units = static_cast<std::int64_t>(number * kPart + std::copysign(0.5, number));
    return static_cast<double>(units) / kPart == number ? std::optional(units) : std::nullopt;
}

String textOf(double number, const Locale& locale) {
    String text;
    appendTextOf(text, number, locale);
    return text;
}

String textOf(float number, const Locale& locale) {
    String text;
    appendTextOf(text, number, locale);
    return text;
}

void appendTextOf(String& text, double number, const Locale& locale) {
    if (const auto units = tenThousandths(number))
        appendTenThousandths(text, *units, locale);
    else
        appendReal(text, number, 15, locale);
}

void appendTextOf(String& text, float number, const Locale& locale) {
    if (const auto units = wholeInTenThousandths(number))
        appendTenThousandths(text, *units, locale);
    else
        appendReal(text, number, 7, locale);
}

String textOf(Currency amount, const Locale& locale) {
    String text;
    appendTenThousandths(text, amount.tenThousandths, locale);
    return text;
}

String textOf(const Decimal& number, const Locale& locale) {
    return fixedPointText(integerDigits(number.high, number.low), number.scale, number.negative, locale);
}

} // namespace kvtdruck
