#include "druckwerk/expression/number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

namespace kvtdruck::druckwerk {

namespace {

constexpr int kMaximumDigits = 18;

constexpr std::array<double, kMaximumDigits + 1> kPowers = {
    1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};

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

} // namespace kvtdruck::druckwerk
