#include "values/text.h"

#include "values/code_points.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>

namespace kvtdruck {

namespace {

void appendUtf8(std::string& utf8, char32_t codePoint) {
    const auto continuation = [&](int shift) { utf8 += static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F)); };
    if (codePoint < 0x80) {
        utf8 += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        utf8 += static_cast<char>(0xC0 | (codePoint >> 6));
        continuation(0);
    } else if (codePoint < 0x10000) {
        utf8 += static_cast<char>(0xE0 | (codePoint >> 12));
        continuation(6);
        continuation(0);
    } else {
        utf8 += static_cast<char>(0xF0 | (codePoint >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

/// How many bytes a sequence beginning with `lead` takes; 0 where no sequence begins so.
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

/// The code point that `bytes`, one whole sequence, encodes in the shortest way; nothing where it is malformed.
std::optional<char32_t> decodedSequence(std::string_view bytes) {
    static constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    static constexpr std::array<unsigned, 5> leadBits{0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t codePoint = static_cast<unsigned char>(bytes[0]) & leadBits[bytes.size()];
    for (const char byte : bytes.substr(1)) {
        if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80)
            return std::nullopt;
        codePoint = (codePoint << 6) | (static_cast<unsigned char>(byte) & 0x3F);
    }
    if (codePoint < smallest[bytes.size()] || codePoint > 0x10FFFF)
        return std::nullopt;
    return codePoint;
}

} // namespace

std::string toUtf8(StringView text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const auto [codePoint, units] = codePointAt(text, position);
        appendUtf8(utf8, codePoint);
        position += units;
    }
    return utf8;
}

String fromUtf8(std::string_view text) {
    String utf16;
    appendFromUtf8(utf16, text);
    return utf16;
}

void appendFromUtf8(String& text, std::string_view utf8) {
    const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    const auto ascii = std::size_t(std::ranges::find_if_not(utf8, isAscii) - utf8.begin());
    const auto before = text.size();
    text.resize(before + ascii); // most texts are nothing else
    std::copy_n(utf8.begin(), ascii, text.begin() + std::ptrdiff_t(before));
    for (std::size_t position = ascii; position < utf8.size();) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(utf8[position]));
        const bool whole = length != 0 && length <= utf8.size() - position;
        const auto codePoint = whole ? decodedSequence(utf8.substr(position, length)) : std::nullopt;
        appendUtf16(text, codePoint.value_or(U'\uFFFD'));
        position += codePoint ? length : 1;
    }
}

StringView trimmed(StringView text) {
    const auto first = text.find_first_not_of(u' ');
    if (first == StringView::npos)
        return {};
    return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

String without(StringView text, StringView what) {
    if (what.empty())
        return String(text);
    String rest;
    for (std::size_t position = 0; position <= text.size();) {
        const std::size_t found = std::min(text.find(what, position), text.size());
        rest += text.substr(position, found - position);
        position = found + what.size();
    }
    return rest;
}

String decimal(long long number) {
    std::array<char, 24> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return String(digits.data(), end);
}

} // namespace kvtdruck
