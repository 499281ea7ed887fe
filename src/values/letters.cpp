#include "values/letters.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace kvtdruck {

std::string asciiLower(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return lower;
}

std::size_t editDistance(std::string_view a, std::string_view b) {
    const std::string from = asciiLower(a);
    const std::string to = asciiLower(b);
    std::vector<std::size_t> row(to.size() + 1); // of the table of prefixes: how far each prefix of `to` is
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

} // namespace kvtdruck
