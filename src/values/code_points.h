// Characters of UTF-16: code points and the surrogate pairs that stand for some of them.
#pragma once

#include "values/text.h"

#include <cstddef>

namespace kvtdruck {

/// Whether the code point is the half of a surrogate pair: no character by itself.
constexpr bool isSurrogate(char32_t codePoint) {
    return codePoint >= 0xD800 && codePoint <= 0xDFFF;
}

/// A code point and how many units of UTF-16 it takes.
struct CodePoint {
    char32_t value;
    std::size_t units;
};

/// The code point that begins at `text[position]`; the half of a surrogate pair stands for itself.
CodePoint codePointAt(StringView text, std::size_t position);

/// Appends `codePoint` to `text`.
void appendUtf16(String& text, char32_t codePoint);

/// The longest length up to `length` that parts no surrogate pair of `text`.
std::size_t wholeCharacters(StringView text, std::size_t length);

/// `text` with U+FFFD in the place of each half of a surrogate pair that stands alone.
String wellFormed(StringView text);

} // namespace kvtdruck
