#include "druckwerk/exits/sheet_formula.h"

#include <charconv>
#include <cmath>

namespace kvtdruck::druckwerk {
namespace {

constexpr std::string_view kMagnitude = "abs";
constexpr std::string_view kPositive = "pos";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isOfName(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '@' || c == '#';
}

/// Takes a name, or a number, from the front of `text`; empty where there is none.
std::string_view takeWord(std::string_view& text) {
    std::size_t length = 0;
    while (length < text.size() && (isOfName(text[length]) || (isDigit(text[0]) && text[length] == '.')))
        ++length;
    const auto word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

/// Reads a formula from left to right. A value that is not there makes a NaN, and so does everything computed from
/// it.
class Evaluation {
  public:
    Evaluation(std::string_view text, const NumberOfName& number) : text_(text), number_(number) {}

    double sum() {
        double value = product();
        for (;;) {
            if (take('+'))
                value += product();
            else if (take('-'))
                value -= product();
            else
                return value;
        }
    }

  private:
    double product() {
        double value = factor();
        for (;;) {
            if (take('*'))
                value *= factor();
            else if (take('/'))
                value /= factor();
            else
                return value;
        }
    }

    double factor() {
        if (take('('))
            return inParentheses();
        const auto word = takeWord(text_);
        if (word == kMagnitude && take('('))
            return std::abs(inParentheses());
        if (word == kPositive && take('(')) {
            const double value = inParentheses();
            return value > 0 ? value : NAN;
        }
        double value = NAN;
        if (!word.empty() && isDigit(word[0]))
            std::from_chars(word.data(), word.data() + word.size(), value);
        else
            value = number_(word).value_or(NAN);
        return value;
    }

    double inParentheses() {
        const double value = sum();
        take(')');
        return value;
    }

    bool take(char c) {
        const bool there = !text_.empty() && text_[0] == c;
        text_.remove_prefix(there ? 1 : 0);
        return there;
    }

    std::string_view text_;
    const NumberOfName& number_;
};

} // namespace

std::optional<double> valueOf(std::string_view formula, const NumberOfName& number) {
    const double value = Evaluation(formula, number).sum();
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::string spreadsheetFormula(std::string_view formula, const CellOfName& cell) {
    std::string text;
    const bool divides = formula.find('/') != std::string_view::npos;
    while (!formula.empty()) {
        const auto word = takeWord(formula);
        if (word.empty()) {
            text += formula[0];
            formula.remove_prefix(1);
        } else if (word == kMagnitude) {
            text += "ABS";
        } else {
            text += isDigit(word[0]) ? std::string(word) : cell(word);
        }
    }
    return divides ? "IFERROR(" + text + ",\"\")" : text;
}

} // namespace kvtdruck::druckwerk
