// Columns of text at the terminal. Texts are UTF-8.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace kvtdruck::cli {

/// Letters of a text: every byte but the continuations.
inline std::size_t lettersOf(std::string_view text) {
    return std::size_t(std::ranges::count_if(text, [](char c) { return (c & 0xc0) != 0x80; }));
}

/// A cell of a column of `width` letters, with the gap to the next.
inline std::string padded(std::string_view text, std::size_t width) {
    const auto letters = lettersOf(text);
    return std::string(text) + std::string(letters < width ? width - letters : 0, ' ') + "  ";
}

} // namespace kvtdruck::cli
