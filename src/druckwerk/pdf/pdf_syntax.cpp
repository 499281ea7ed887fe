#include "druckwerk/pdf/pdf_syntax.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace kvtdruck::druckwerk {

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr double kMaximumNumber = 1e9; // beyond it, and for NaN, there is nothing to be seen on a page
constexpr std::int64_t kMaximumHundredths = 100'000'000'000;
constexpr std::size_t kNumberRoom = 16;

/// Writes hundredths in front of `end`, without zeros at the end of the decimals; gives where they begin.
char* written(std::int64_t hundredths, char* end) {
    if (std::abs(hundredths) > kMaximumHundredths)
        hundredths = 0;
    const auto magnitude = static_cast<std::uint64_t>(std::abs(hundredths));
    auto whole = static_cast<std::uint32_t>(magnitude / 100);
    const auto decimals = static_cast<std::uint32_t>(magnitude % 100);
    if (decimals != 0) {
        if (decimals % 10 != 0)
            *--end = static_cast<char>('0' + decimals % 10);
        *--end = static_cast<char>('0' + decimals / 10);
        *--end = '.';
    }
    do
        *--end = static_cast<char>('0' + whole % 10);
    while ((whole /= 10) != 0);
    if (hundredths < 0)
        *--end = '-';
    return end;
}

} // namespace

void appendNumber(std::string& out, double value) {
    if (!(std::fabs(value) < kMaximumNumber))
        value = 0;
    std::array<char, kNumberRoom> buffer;
    char* const end = buffer.data() + buffer.size();
    const char* const begin =
        written(static_cast<std::int64_t>(value < 0 ? value * 100 - 0.5 : value * 100 + 0.5), end);
    out.append(begin, static_cast<std::size_t>(end - begin));
}

void appendMove(std::string& out, std::int64_t x, std::int64_t y) {
    constexpr std::string_view kMove = " Td";
    std::array<char, 2 * kNumberRoom + kMove.size()> buffer;
    char* const end = buffer.data() + buffer.size();
    char* begin = end - kMove.size();
    std::memcpy(begin, kMove.data(), kMove.size());
    begin = written(y, begin);
    *--begin = ' ';
    begin = written(x, begin);
    out.append(begin, static_cast<std::size_t>(end - begin));
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
