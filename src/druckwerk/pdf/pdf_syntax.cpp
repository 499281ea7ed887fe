#include "druckwerk/pdf/pdf_syntax.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace kvtdruck::druckwerk {

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr double kMaximumNumber = 1e9; // beyond it, and for NaN, there is nothing to be seen on a page

} // namespace

void appendNumber(std::string& out, double value) {
    if (!(std::fabs(value) < kMaximumNumber))
        value = 0;
    auto hundredths = static_cast<std::int64_t>(value < 0 ? value * 100 - 0.5 : value * 100 + 0.5);
    std::array<char, 24> buffer;
    char* at = buffer.data();
    if (hundredths < 0) {
        *at++ = '-';
        hundredths = -hundredths;
    }
    at = std::to_chars(at, buffer.data() + buffer.size(), hundredths / 100).ptr;
    const auto decimals = static_cast<int>(hundredths % 100);
    if (decimals != 0) {
        *at++ = '.';
        *at++ = static_cast<char>('0' + decimals / 10);
        if (decimals % 10 != 0)
            *at++ = static_cast<char>('0' + decimals % 10);
    }
    out.append(buffer.data(), at);
}

std::string pdfText(std::u16string_view text) {
    std::string out = "<FEFF";
    for (const char16_t c : text)
        for (int shift = 12; shift >= 0; shift -= 4)
            out += kDigits[(c >> shift) & 15];
    return out + ">";
}

std::string hexadecimalString(std::string_view bytes) {
    std::string out = "<";
    for (const char c : bytes) {
        out += kDigits[static_cast<unsigned char>(c) >> 4];
        out += kDigits[c & 15];
    }
    return out + ">";
}

void appendColor(std::string& out, Rgb color) {
    for (const std::uint8_t part : {color.red, color.green, color.blue}) {
        std::array<char, 8> text;
        const int thousandths = (part * 1000 + 127) / 255;
        const int written = thousandths == 1000 ? std::snprintf(text.data(), text.size(), "1 ")
                            : thousandths == 0  ? std::snprintf(text.data(), text.size(), "0 ")
                                                : std::snprintf(text.data(), text.size(), ".%03d ", thousandths);
        out.append(text.data(), static_cast<std::size_t>(written));
    }
}

} // namespace kvtdruck::druckwerk
