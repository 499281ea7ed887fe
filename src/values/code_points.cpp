#include "values/code_points.h"

namespace kvtdruck {

namespace {

bool isHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

CodePoint codePointAt(StringView text, std::size_t position) {
    const char16_t unit = text[position];
    if (isHighSurrogate(unit) && position + 1 < text.size() && isLowSurrogate(text[position + 1]))
        return {0x10000 + ((unit - 0xD800U) << 10) + (text[position + 1] - 0xDC00U), 2};
    return {unit, 1};
}

void appendUtf16(String& text, char32_t codePoint) {
    if (codePoint < 0x10000) {
        text += static_cast<char16_t>(codePoint);
    } else {
        text += static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
        text += static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
    }
}

std::size_t wholeCharacters(StringView text, std::size_t length) {
    const bool parts =
        length > 0 && length < text.size() && isHighSurrogate(text[length - 1]) && isLowSurrogate(text[length]);
    return parts ? length - 1 : length;
}

String wellFormed(StringView text) {
    String whole;
    whole.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const auto [codePoint, units] = codePointAt(text, position);
        appendUtf16(whole, isSurrogate(codePoint) ? u'\uFFFD' : codePoint);
        position += units;
    }
    return whole;
}

} // namespace kvtdruck
