#include "druckwerk/svg/transform_list.h"

#include "druckwerk/svg/svg_style.h"

#include <numbers>
#include <vector>

namespace kvtdruck::druckwerk {

Matrix parseTransform(std::string_view text) {
    Matrix matrix;
    for (std::size_t open = 0; (open = text.find('(')) != std::string_view::npos;) {
        const auto close = std::min(text.find(')', open), text.size());
        const auto name = trimmedAscii(text.substr(0, open));
        std::vector<double> n;
        for (const auto word : splitWords(text.substr(open + 1, close - open - 1)))
            n.push_back(parseLength(word).value_or(0));
        text.remove_prefix(std::min(close + 1, text.size()));
        const auto command = name.substr(
            name.find_first_not_of(" \t\r\n,") == std::string_view::npos ? 0 : name.find_first_not_of(" \t\r\n,"));
        const auto value = [&](std::size_t i, double otherwise = 0) { return i < n.size() ? n[i] : otherwise; };
        if (command == "matrix" && n.size() == 6)
            matrix = matrix * Matrix{n[0], n[1], n[2], n[3], n[4], n[5]};
        else if (command == "translate")
            matrix = matrix * Matrix{1, 0, 0, 1, value(0), value(1)};
        else if (command == "scale")
            matrix = matrix * Matrix{value(0, 1), 0, 0, value(1, value(0, 1)), 0, 0};
        else if (command == "rotate") {
            const double angle = value(0) * std::numbers::pi / 180;
            const Matrix turn{std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), 0, 0};
            matrix =
                matrix * Matrix{1, 0, 0, 1, value(1), value(2)} * turn * Matrix{1, 0, 0, 1, -value(1), -value(2)};
        } else if (command == "skewX" || command == "skewY") {
            const double slope = std::tan(value(0) * std::numbers::pi / 180);
            matrix = matrix * (command == "skewX" ? Matrix{1, 0, slope, 1, 0, 0} : Matrix{1, slope, 0, 1, 0, 0});
        }
    }
    return matrix;
}

} // namespace kvtdruck::druckwerk
