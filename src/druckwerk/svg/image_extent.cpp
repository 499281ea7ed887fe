#include "druckwerk/svg/image_extent.h"

namespace kvtdruck::druckwerk {

namespace {

int sextetOf(char c) {
    return c >= 'A' && c <= 'Z'   ? c - 'A'
           : c >= 'a' && c <= 'z' ? c - 'a' + 26
           : c >= '0' && c <= '9' ? c - '0' + 52
           : c == '+'             ? 62
           : c == '/'             ? 63
                                  : -1;
}

} // namespace

std::optional<std::pair<std::uint32_t, std::uint32_t>> imageExtent(std::string_view head) {
    const auto number = [&](std::size_t offset, int bytes) {
        std::uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
            value = value << 8 | static_cast<unsigned char>(head[offset + static_cast<std::size_t>(i)]);
        return value;
    };
    if (head.size() > 24 && head.substr(0, 8) == "\x89PNG\r\n\x1a\n")
        return std::pair(number(16, 4), number(20, 4));
    if (head.size() < 4 || head.substr(0, 2) != "\xff\xd8")
        return std::nullopt;
    for (std::size_t i = 2; i + 9 < head.size();) { // JPEG: from marker to marker up to the frame's header
        const auto marker = number(i, 2);
        if (marker >= 0xFFC0 && marker <= 0xFFCF && marker != 0xFFC4 && marker != 0xFFC8 && marker != 0xFFCC)
            return std::pair(number(i + 7, 2), number(i + 5, 2));
        i += 2 + number(i + 2, 2);
    }
    return std::nullopt;
}

std::optional<std::string> dataOf(std::string_view address) {
    const auto comma = address.find(',');
    if (address.substr(0, 5) != "data:" || comma == std::string_view::npos ||
        address.substr(0, comma).find(";base64") == std::string_view::npos)
        return std::nullopt;
    std::string data;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : address.substr(comma + 1)) {
        if (c == '=' || c == ' ' || c == '\n' || c == '\r' || c == '\t')
            continue;
        const int value = sextetOf(c);
        if (value < 0)
            return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        count += 6;
        if (count >= 8) {
            count -= 8;
            data += static_cast<char>(bits >> count & 0xff);
        }
    }
    return data;
}

std::string dataAddress(std::string_view content) {
    static constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string address = content.starts_with("\xff\xd8") ? "data:image/jpeg;base64," : "data:image/png;base64,";
    for (std::size_t i = 0; i < content.size(); i += 3) {
        std::uint32_t bits = 0;
        for (std::size_t j = i; j < i + 3; ++j)
            bits = bits << 8 | (j < content.size() ? static_cast<unsigned char>(content[j]) : 0);
        for (std::size_t j = 0; j < 4; ++j)
            address += i + j > content.size() ? '=' : kDigits[bits >> (18 - 6 * j) & 63];
    }
    return address;
}

} // namespace kvtdruck::druckwerk
