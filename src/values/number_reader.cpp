#include "values/conversion.h"

#include "values/characters.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>

namespace kvtdruck {
namespace {

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
        return blankSeparator && rest_.size() > 1 && isDigit(rest_[1]) && takeBlank();
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

} // namespace

std::optional<double> numberIn(StringView text, const Locale& locale) {
    return NumberReader(text, locale).read();
}

} // namespace kvtdruck
