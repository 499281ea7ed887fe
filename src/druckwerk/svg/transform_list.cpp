#include "druckwerk/svg/transform_list.h"

#include "druckwerk/svg/svg_style.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kMaximum = 1e7; // of any number: pages are 2 m at most

using Arguments = std::span<const double>;

/// A function of the list: how many arguments it takes, and whether they are angles.
struct Function {
    std::string_view name;
    std::array<std::size_t, 2> counts;
    bool angle;
    Matrix (*matrix)(Arguments);
};

Matrix rotation(Arguments n) {
    const double angle = n[0] * std::numbers::pi / 180;
    const Matrix turn{std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), 0, 0};
    const double x = n.size() > 1 ? n[1] : 0;
    const double y = n.size() > 1 ? n[2] : 0;
    return Matrix{1, 0, 0, 1, x, y} * turn * Matrix{1, 0, 0, 1, -x, -y};
}

double slope(double degrees) {
    return std::tan(degrees * std::numbers::pi / 180);
}

constexpr std::array<Function, 6> kFunctions = {{
    {"matrix", {6, 6}, false, [](Arguments n) { return Matrix{n[0], n[1], n[2], n[3], n[4], n[5]}; }},
    {"translate", {1, 2}, false, [](Arguments n) { return Matrix{1, 0, 0, 1, n[0], n.size() > 1 ? n[1] : 0}; }},
    {"scale", {1, 2}, false, [](Arguments n) { return Matrix{n[0], 0, 0, n.size() > 1 ? n[1] : n[0], 0, 0}; }},
    {"rotate", {1, 3}, true, rotation},
    {"skewX", {1, 1}, true, [](Arguments n) { return Matrix{1, 0, slope(n[0]), 1, 0, 0}; }},
    {"skewY", {1, 1}, true, [](Arguments n) { return Matrix{1, slope(n[0]), 0, 1, 0, 0}; }},
}};

class TransformReader {
  public:
    explicit TransformReader(std::string_view text) : rest_(text) {}

    std::optional<Matrix> read() {
        skip(kBlanks);
        if (rest_ == "none")
            return Matrix{};
        Matrix whole;
        for (; !rest_.empty(); skip(kSeparators)) {
            const auto step = function();
            if (!step)
                return std::nullopt;
            whole = whole * *step;
        }
        return whole;
    }

  private:
    static constexpr std::string_view kBlanks = " \t\r\n";
    static constexpr std::string_view kSeparators = " \t\r\n,";

    void skip(std::string_view signs) {
        const auto next = rest_.find_first_not_of(signs);
        rest_.remove_prefix(next == std::string_view::npos ? rest_.size() : next);
    }

    std::string_view letters() {
        std::size_t count = 0;
        while (count < rest_.size() && std::isalpha(static_cast<unsigned char>(rest_[count])) != 0)
            ++count;
        const auto word = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return word;
    }

    std::optional<Matrix> function() {
        const auto name = letters();
        const auto* found = std::find_if(kFunctions.begin(), kFunctions.end(),
                                         [&](const Function& known) { return known.name == name; });
        skip(kBlanks);
        if (found == kFunctions.end() || !rest_.starts_with('('))
            return std::nullopt;
        rest_.remove_prefix(1);
        std::vector<double> arguments;
        for (skip(kBlanks); !rest_.starts_with(')'); skip(kSeparators)) {
            const auto argument = number(found->angle && arguments.empty());
            if (!argument || arguments.size() == found->counts[1])
                return std::nullopt;
            arguments.push_back(*argument);
        }
        rest_.remove_prefix(1);
        if (arguments.size() != found->counts[0] && arguments.size() != found->counts[1])
            return std::nullopt;
        return found->matrix(arguments);
    }

    /// A number, an angle in degrees or a length in user units.
    std::optional<double> number(bool angle) {
        if (rest_.size() > 1 && rest_[0] == '+')
            rest_.remove_prefix(1);
        double value = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
        if (error != std::errc())
            return std::nullopt;
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        const auto factor = angle ? degreesIn(letters()) : parseLength("1" + std::string(letters()));
        if (!factor || !(std::fabs(value * *factor) <= kMaximum))
            return std::nullopt;
        return value * *factor;
    }

    static std::optional<double> degreesIn(std::string_view unit) {
        if (unit.empty() || unit == "deg")
            return 1;
        if (unit == "rad")
            return 180 / std::numbers::pi;
        if (unit == "grad")
            return 0.9;
        if (unit == "turn")
            return 360;
        return std::nullopt;
    }

    std::string_view rest_;
};

} // namespace

std::optional<Matrix> parseTransform(std::string_view text) {
    return TransformReader(text).read();
}

} // namespace kvtdruck::druckwerk
