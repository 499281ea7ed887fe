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

/// The number without its sign, as a percentage where asked for, with at most `decimals`; halves are rounded up.
Number rounded(const Number& number, bool percent, int decimals) {
    Number result;
    result.digits = number.digits < 0 ? -number.digits : number.digits;
    result.scale = number.scale - (percent ? 2 : 0);
    const int surplus = result.scale - decimals;
    if (surplus <= 0)
        return result;
    const std::int64_t divisor = kIntegerPowers[static_cast<std::size_t>(surplus)];
    result.digits = result.digits / divisor + (result.digits % divisor * 2 >= divisor ? 1 : 0);
    result.scale = decimals;
    return result;
}

/// The digits of a number from the last one on, and zeros behind them.
class ExactDigits {
  public:
    ExactDigits(std::int64_t digits, int zeros) : rest_(static_cast<std::uint64_t>(digits)), zeros_(zeros) {}
    bool areLeft() const { return rest_ != 0; }
    char16_t next() {
        if (zeros_ > 0) {
            --zeros_;
            return u'0';
        }
        const auto last = static_cast<char16_t>(u'0' + rest_ % 10);
        rest_ /= 10;
        return last;
    }

  private:
    std::uint64_t rest_;
    int zeros_;
};

/// Digits that are written, from the last one on.
class WrittenDigits {
  public:
    WrittenDigits(const char* begin, const char* end) : begin_(begin), end_(end) {}
    bool areLeft() const { return end_ != begin_; }
    char16_t next() { return areLeft() ? static_cast<char16_t>(*--end_) : u'0'; }

  private:
    const char* begin_;
    const char* end_;
};

constexpr std::size_t kLongestSign = 4; // a decimal sign or a separator is one character in most locales
/// The largest double has 309 digits in front of the decimal sign, with 102 separators, and 15 are shown behind it.
constexpr std::size_t kMostCharacters = 309 + 102 * kLongestSign + kLongestSign + 15;

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

/// Appends `digits`, the last `places` of them behind the decimal sign.
template <class Digits>
void NumberPattern::appendDigits(const Part& part, Digits digits, int places, const Locale& locale, String& out) {
    std::array<char16_t, kMostCharacters> buffer;
    char16_t* const end = buffer.data() + buffer.size();
    char16_t* begin = end;
    const auto writeSign = [&begin](StringView sign) {
        for (std::size_t i = std::min(sign.size(), kLongestSign); i > 0;)
            *--begin = sign[--i];
    };
    for (int place = 0; place < places; ++place)
        *--begin = digits.next();
    if (places > 0)
        writeSign(locale.decimalSign);
    std::size_t inGroup = 0;
    for (int place = 0; digits.areLeft() || place < part.integerDigits; ++place) {
        if (inGroup == kGroup) {
            writeSign(locale.thousandsSeparator);
            inGroup = 0;
        }
        *--begin = digits.next();
        inGroup += part.grouped ? 1 : 0;
    }
    out.append(begin, static_cast<std::size_t>(end - begin));
}

void NumberPattern::appendExact(const Part& part, const Number& number, const Locale& locale, String& out) {
    std::int64_t digits = number.digits;
    int scale = number.scale;
    for (; scale > part.minimumDecimals && digits % 10 == 0; digits /= 10)
        --scale;
    const int places = std::max(scale, part.minimumDecimals);
    appendDigits(part, ExactDigits(digits, digits == 0 ? places : places - scale), places, locale, out);
}

void NumberPattern::appendLarge(const Number& number, const Locale& locale, String& out) const {
    const Part& part = parts_[number.value < 0 && parts_.size() > 1 ? 1 : 0];
    if (number.value < 0 && parts_.size() == 1)
        out += u'-';
    out += part.prefix;
    if (part.hasDigits) {
        // A percentage has its decimal sign two digits further on: a hundred times the number may be no double.
        std::array<char, 400> buffer{};
        const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(number.value),
                                           std::chars_format::fixed, part.maximumDecimals + (part.percent ? 2 : 0));
        const char* end = std::remove(buffer.data(), written.ptr, '.');
        int places = part.maximumDecimals;
        for (; places > part.minimumDecimals && end[-1] == '0'; --end)
            --places;
        appendDigits(part, WrittenDigits(buffer.data(), end), places, locale, out);
    }
    out += part.suffix;
}

void NumberPattern::append(const Number& number, const Locale& locale, String& out) const {
    if (number.kind == Number::Kind::Large) {
        appendLarge(number, locale, out);
        return;
    }
    const Part& first = parts_[number.digits < 0 && parts_.size() > 1 && parts_[1].hasDigits ? 1 : 0];
    const Number shown = rounded(number, first.percent, first.maximumDecimals);
    const bool negative = number.digits < 0 && shown.digits != 0;
    const Part& part = parts_[negative && parts_.size() > 1 ? 1 : shown.digits == 0 && parts_.size() > 2 ? 2 : 0];
    if (negative && parts_.size() == 1)
        out += u'-';
    out += part.prefix;
    if (part.hasDigits)
        appendExact(part, shown, locale, out);
    out += part.suffix;
}

} // namespace kvtdruck::druckwerk
