// The layout of a profile and of its tags is that of ICC.1:2004-10, https://www.color.org/icc1v42.pdf, the version
// that PDF 1.7 names; sections in brackets are its.
#include "druckwerk/pdf/color_profile.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kHeaderSize = 128;
constexpr std::size_t kTagEntrySize = 12;

void appendBigEndian(std::string& out, std::uint32_t value, int bytes = 4) {
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        out += static_cast<char>(value >> shift & 0xff);
}

/// s15Fixed16Number [4.6].
void appendFixed(std::string& out, double value) {
    appendBigEndian(out, static_cast<std::uint32_t>(std::lround(value * 65536)));
}

/// A tag's type signature and its reserved bytes [10].
std::string typed(std::string_view signature) {
    return std::string(signature) + std::string(4, '\0');
}

/// XYZType [10.27], s15Fixed16ArrayType [10.18], parametricCurveType [10.15] are all such numbers behind a head.
std::string numbers(std::string head, std::span<const double> values) {
    for (const double value : values)
        appendFixed(head, value);
    return head;
}

/// multiLocalizedUnicodeType [10.13] with one text, of ASCII characters.
std::string text(std::string_view ascii) {
    std::string out = typed("mluc");
    appendBigEndian(out, 1);
    appendBigEndian(out, kTagEntrySize);
    out += "enUS";
    appendBigEndian(out, static_cast<std::uint32_t>(2 * ascii.size()));
    appendBigEndian(out, 28); // where the text begins: behind this head
    for (const char c : ascii)
        appendBigEndian(out, static_cast<unsigned char>(c), 2);
    return out;
}

// The illuminant of the connection space, D50 [7.2.16], and sRGB's primaries and white adapted to it (Bradford), as
// the ICC's own profile of sRGB has them: https://registry.color.org/rgb-registry/srgbprofiles
constexpr std::array kD50{0.9642, 1.0, 0.8249};
constexpr std::array kRed{0.4360657, 0.2224884, 0.0139160};
constexpr std::array kGreen{0.3851471, 0.7168732, 0.0970764};
constexpr std::array kBlue{0.1430664, 0.0606079, 0.7140961};
constexpr std::array kAdaptation{1.0478112,  0.0228866,  -0.0501270, 0.0295424, 0.9904844,
                                 -0.0170491, -0.0092345, 0.0150436,  0.7521316};
// Function type 3: Y = (aX + b)^g from d on, cX below; IEC 61966-2-1.
constexpr std::array kCurve{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};

std::vector<std::pair<std::string_view, std::string>> tags() {
    const auto point = [](std::span<const double> xyz) { return numbers(typed("XYZ "), xyz); };
    const auto curve = numbers(typed("para") + std::string("\0\3\0\0", 4), kCurve);
    return {{"desc", text("sRGB")}, {"cprt", text("CC0")},
            {"wtpt", point(kD50)},  {"chad", numbers(typed("sf32"), kAdaptation)},
            {"rXYZ", point(kRed)},  {"gXYZ", point(kGreen)},
            {"bXYZ", point(kBlue)}, {"rTRC", curve},
            {"gTRC", curve},        {"bTRC", curve}};
}

/// The header [7.2] of a profile of `size` bytes.
std::string header(std::size_t size) {
    std::string out;
    appendBigEndian(out, static_cast<std::uint32_t>(size));
    appendBigEndian(out, 0); // no particular colour management
    appendBigEndian(out, 0x04200000);
    out += "mntrRGB XYZ ";
    for (const std::uint32_t part : {2024, 1, 1, 0, 0, 0}) // when it was made, which tells nobody anything
        appendBigEndian(out, part, 2);
    out += "acsp";
    out.append(28, '\0'); // platform, flags, device, attributes, rendering intent: perceptual
    for (const double part : kD50)
        appendFixed(out, part);
    out.resize(kHeaderSize, '\0');
    return out;
}

} // namespace

std::string srgbProfile() {
    const auto all = tags();
    std::string table;
    std::string data;
    appendBigEndian(table, static_cast<std::uint32_t>(all.size()));
    const std::size_t begin = kHeaderSize + 4 + all.size() * kTagEntrySize;
    for (const auto& [name, value] : all) {
        auto at = data.find(value); // tags may share what they say
        if (at == std::string::npos || at % 4 != 0) {
            at = data.size();
            data += value;
            data.resize((data.size() + 3) / 4 * 4, '\0');
        }
        table += name;
        appendBigEndian(table, static_cast<std::uint32_t>(begin + at));
        appendBigEndian(table, static_cast<std::uint32_t>(value.size()));
    }
    return header(begin + data.size()) + table + data;
}

} // namespace kvtdruck::druckwerk
