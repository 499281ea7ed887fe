#include "druckwerk/expression/number.h"

#include "values/characters.h"
#include "values/conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>

namespace kvtdruck::druckwerk {

namespace {

constexpr int kMaximumDigits = 18;
constexpr std::int64_t kExactDouble = std::int64_t{1} << 53; // up to here a double holds every integer

constexpr std::array<double, kMaximumDigits + 1> kPowers = {
    1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};

/// Brings the rarer spellings into the form -1234.5E-6.
class Normalizer {
  public:
    Normalizer(StringView text, const Locale& locale) : rest_(trimmed(text)), locale_(locale) {}

    std::optional<std::string> read() {
        if (accept(u"-"))
            plain_ += '-';
        else
            accept(u"+");
        if (!integerPart())
            return std::nullopt;
        if (accept(locale_.decimalSign)) {
            plain_ += '.';
            if (digits() == 0)
                return std::nullopt;
        }
        if (accept(u"E") || accept(u"e")) {
            plain_ += 'e';
            if (accept(u"-"))
                plain_ += '-';
            else
                accept(u"+");
            if (digits() == 0)
                return std::nullopt;
        }
        return rest_.empty() ? std::optional(plain_) : std::nullopt;
    }

  private:
    bool accept(StringView token) {
        if (token.empty() || !rest_.starts_with(token))
            return false;
        rest_.remove_prefix(token.size());
        return true;
    }

    std::size_t digits() {
        std::size_t count = 0;
        for (; count < rest_.size() && isDigit(rest_[count]); ++count)
            plain_ += static_cast<char>(rest_[count]);
        rest_.remove_prefix(count);
        return count;
    }

    /// Digits, or groups of three of them behind one of up to three.
    bool integerPart() {
        std::size_t group = digits();
        if (group == 0)
            return false;
        for (bool first = true; accept(locale_.thousandsSeparator); first = false) {
            if (first && group > 3)
                return false;
            group = digits();
            if (group != 3)
                return false;
        }
        return true;
    }

    StringView rest_;
    const Locale& locale_;
    std::string plain_;
};

/// The number of up to 18 digits that is written in the form -1234.5; anything else has but its value.
Number exactOf(const std::string& plain) {
    Number number;
    number.kind = Number::Kind::None;
    const auto [end, error] = std::from_chars(plain.data(), plain.data() + plain.size(), number.value);
    if (error != std::errc()) // no double is so large
        return number;
    const auto digits = std::count_if(plain.begin(), plain.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (digits > kMaximumDigits || plain.find('e') != std::string::npos)
        return Number::of(number.value);
    number.kind = Number::Kind::Exact;
    for (const char c : plain)
        if (c >= '0' && c <= '9')
            number.digits = number.digits * 10 + (c - '0');
    if (plain[0] == '-')
        number.digits = -number.digits;
    const auto point = plain.find('.');
    number.scale = point == std::string::npos ? 0 : static_cast<int>(plain.size() - point - 1);
    return number;
}

Number parseSlowly(StringView text, const Locale& locale) {
    if (const auto plain = Normalizer(text, locale).read())
        return exactOf(*plain);
    Number none;
    none.kind = Number::Kind::None;
    return none;
}

} // namespace

Number Number::parse(StringView text, const Locale& locale) {
    Number number;
    if (text.empty())
        return number;
    if (text.size() > kMaximumDigits)
        return parseSlowly(text, locale);
    const char16_t sign = locale.decimalSign.size() == 1 ? locale.decimalSign[0] : u'\0';
    std::size_t at = text[0] == u'-' ? 1 : 0;
    const std::size_t first = at;
    std::int64_t digits = 0;
    std::size_t point = 0;
    for (; at < text.size(); ++at) {
        const char16_t c = text[at];
        if (isDigit(c))
            digits = digits * 10 + (c - u'0');
        else if (c == sign && point == 0 && at > first)
            point = at + 1;
        else
            return parseSlowly(text, locale);
    }
    if (first == at || point == at || digits > kExactDouble)
        return parseSlowly(text, locale);
    number.kind = Kind::Exact;
    number.digits = first != 0 ? -digits : digits;
    number.scale = point != 0 ? static_cast<int>(at - point) : 0;
    number.value = static_cast<double>(number.digits) / kPowers[static_cast<std::size_t>(number.scale)];
    return number;
}

Number Number::of(double value) {
    Number number;
    number.value = value;
    number.kind = std::isfinite(value) ? Kind::Large : Kind::None;
    if (number.kind == Kind::None || std::fabs(value) >= 1e15)
        return number;
    if (const auto units = tenThousandths(value)) { // as most sums and differences of amounts are
        number.kind = Kind::Exact;
        number.digits = *units;
        for (number.scale = 4; number.scale > 0 && number.digits % 10 == 0; --number.scale)
            number.digits /= 10;
        return number;
    }
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
    for (; scale > 0 && digits % 10 == 0; --scale)
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

} // namespace kvtdruck::druckwerk
