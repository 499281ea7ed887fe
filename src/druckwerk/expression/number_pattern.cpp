#include "druckwerk/expression/number_pattern.h"

#include "druckwerk/common/fault.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

constexpr int kMaximumDigits = 18;
constexpr std::size_t kGroup = 3; // digits between two separators

constexpr std::array<std::int64_t, kMaximumDigits + 1> kIntegerPowers = [] {
    std::array<std::int64_t, kMaximumDigits + 1> powers{};
    powers[0] = 1;
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}();

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
char16_t* writeDigits(Magnitude number, int decimals, char16_t* end) {
    char16_t* begin = end;
    if (number.digits != 0)
        for (int i = number.scale; i < decimals; ++i)
            *--begin = u'0';
    for (auto rest = static_cast<std::uint64_t>(number.digits); rest != 0; rest /= 10)
        *--begin = static_cast<char16_t>(u'0' + rest % 10);
    while (end - begin < decimals)
        *--begin = u'0';
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

/// All digits without a sign between them, the last `decimals` of them behind the decimal sign.
void NumberPattern::appendDigits(const Part& part, StringView digits, int decimals, const Locale& locale,
                                 String& out) {
    const auto integers = digits.size() - static_cast<std::size_t>(decimals);
    const auto begin = out.size();
    const auto wanted = static_cast<std::size_t>(part.integerDigits);
    if (wanted > integers)
        out.append(wanted - integers, u'0');
    out += digits.substr(0, integers);
    if (part.grouped)
        for (auto at = out.size(); at > begin + kGroup;)
            out.insert(at -= kGroup, locale.thousandsSeparator);
    StringView behind = digits.substr(integers);
    while (static_cast<int>(behind.size()) > part.minimumDecimals && behind.back() == u'0')
        behind.remove_suffix(1);
    if (!behind.empty())
        out.append(locale.decimalSign).append(behind);
}

void NumberPattern::appendLarge(const Number& number, const Locale& locale, String& out) const {
    const Part& part = parts_[number.value < 0 && parts_.size() > 1 ? 1 : 0];
    if (number.value < 0 && parts_.size() == 1)
        out += u'-';
    out += part.prefix;
    if (part.hasDigits) {
        // A percentage has its decimal sign two digits further on: a hundred times the number may be no double.
        std::array<char, 400> buffer{};
        const int decimals = part.maximumDecimals + (part.percent ? 2 : 0);
        const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(number.value),
                                           std::chars_format::fixed, decimals);
        const char* end = std::remove(buffer.data(), written.ptr, '.');
        appendDigits(part, String(buffer.begin(), buffer.begin() + (end - buffer.data())), part.maximumDecimals,
                     locale, out);
    }
    out += part.suffix;
}

void NumberPattern::append(const Number& number, const Locale& locale, String& out) const {
    if (number.kind == Number::Kind::Large) {
        appendLarge(number, locale, out);
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
        std::array<char16_t, 64> buffer;
        char16_t* const end = buffer.data() + buffer.size();
        const char16_t* const begin = writeDigits(shown, decimals, end);
        appendDigits(part, {begin, static_cast<std::size_t>(end - begin)}, decimals, locale, out);
    }
    out += part.suffix;
}

} // namespace kvtdruck::druckwerk
