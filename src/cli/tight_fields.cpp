#include "cli/tight_fields.h"

#include <array>
#include <cstdio>

namespace kvtdruck::cli {
namespace {

/// How much of a text a message shows.
constexpr std::size_t kShownOfText = 80;
constexpr double kMillimetresPerPoint = 25.4 / 72;

std::string inMillimetres(double points) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", points * kMillimetresPerPoint);
    std::string german = text.data();
    if (const auto point = german.find('.'); point != std::string::npos)
        german[point] = ',';
    return german + " mm";
}

/// The beginning of a UTF-8 text in quotation marks.
std::string quoted(const std::string& text) {
    if (text.size() <= kShownOfText)
        return "„" + text + "“";
    auto end = kShownOfText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80)
        --end;
    return "„" + text.substr(0, end) + "…“";
}

} // namespace

void TightFields::add(const druckwerk::TightField& field) {
    auto& tight = fields_[std::string(field.place)];
    ++tight.values;
    if (tight.values == 1 || field.needed > tight.most.needed)
        tight.most = {{}, field.text, field.lines, field.needed, field.room}; // the place is kept already
}

std::vector<std::string> TightFields::messages() const {
    std::vector<std::string> result;
    for (const auto& [place, tight] : fields_) {
        const auto& most = tight.most;
        const auto values = tight.values == 1 ? "einen Wert" : std::to_string(tight.values) + " Werte";
        const auto lines = std::to_string(static_cast<int>(most.room));
        auto& message = result.emplace_back(place);
        message.append(most.lines ? ": Feld ist zu niedrig für " : ": Feld ist zu schmal für ");
        message.append(values).append(": ").append(quoted(most.text));
        if (most.lines)
            message.append(" braucht mehr als ").append(lines).append(most.room > 1 ? " Zeilen" : " Zeile");
        else
            message.append(" braucht ")
                .append(inMillimetres(most.needed))
                .append(", Platz ist für ")
                .append(inMillimetres(most.room));
    }
    return result;
}

} // namespace kvtdruck::cli
