#include "druckwerk/svg/svg_style.h"

#include "druckwerk/common/fault.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kMaximumLength = 100000;

std::optional<double> parseNumber(std::string_view text, std::string_view* rest = nullptr) {
    text = trimmedAscii(text);
    if (!text.empty() && text[0] == '+')
        text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value) || std::fabs(value) > kMaximumLength)
        return std::nullopt;
    const std::string_view behind = text.substr(static_cast<std::size_t>(end - text.data()));
    if (rest != nullptr)
        *rest = behind;
    else if (!behind.empty())
        return std::nullopt;
    return value;
}

double parseOpacity(std::string_view text) {
    std::string_view rest;
    const auto value = parseNumber(text, &rest);
    return value ? std::clamp(rest == "%" ? *value / 100 : *value, 0.0, 1.0) : 1;
}

void parsePaint(std::string_view text, Paint& paint, Rgb currentColor) {
    if (text == "none" || text == "transparent") {
        paint.kind = Paint::Kind::None;
    } else if (text == "currentColor" || text == "currentcolor") {
        paint.kind = Paint::Kind::Color;
        paint.color = currentColor;
    } else if (const auto color = parseColor(text)) {
        paint.kind = Paint::Kind::Color;
        paint.color = *color;
    } else {
        paint.kind = Paint::Kind::Complex;
    }
}

int parseWeight(std::string_view text, int inherited) {
    if (text == "normal")
        return 400;
    if (text == "bold")
        return 700;
    if (text == "bolder")
        return inherited < 600 ? 700 : 900;
    if (text == "lighter")
        return inherited < 600 ? 100 : 400;
    return static_cast<int>(std::clamp(parseNumber(text).value_or(400), 1.0, 1000.0));
}

std::vector<std::string> parseFamilies(std::string_view text) {
    std::vector<std::string> families;
    for (std::string_view family : splitWords(text, ",")) {
        family = trimmedAscii(family);
        if (family.size() > 1 && (family[0] == '\'' || family[0] == '"'))
            family = trimmedAscii(family.substr(1, family.size() - 2));
        if (!family.empty())
            families.emplace_back(family);
    }
    return families;
}

std::vector<double> parseDashes(std::string_view text, double fontSize) {
    std::vector<double> dashes;
    double sum = 0;
    if (text != "none")
        for (const auto word : splitWords(text)) {
            dashes.push_back(std::max(0.0, parseLength(word, fontSize).value_or(0)));
            sum += dashes.back();
        }
    if (sum <= 0 || dashes.size() > 32)
        dashes.clear();
    return dashes;
}

double parseFontSize(std::string_view text, double inherited) {
    if (text.ends_with('%'))
        return inherited * parseNumber(text.substr(0, text.size() - 1)).value_or(100) / 100;
    return parseLength(text, inherited).value_or(inherited);
}

using Setter = void (*)(Style& style, std::string_view value);

void setSpacing(Style& style, std::string_view value) {
    style.unusualText =
        style.unusualText || (value != "normal" && parseLength(value, style.fontSize).value_or(0) != 0);
}

void setDecoration(Style& style, std::string_view value) {
    style.unusualText = style.unusualText || !value.starts_with("none");
}

/// What hides, cuts or marks: only "none" is simple.
void setEffect(Style& style, std::string_view value) {
    style.complex = style.complex || value != "none";
}

void setFlow(Style& style, std::string_view value) {
    style.flowed = style.flowed || (value != "none" && value != "auto" && value != "0");
}

const std::map<std::string_view, Setter> kProperties = {
    {"fill", [](Style& s, std::string_view value) { parsePaint(value, s.fill, s.currentColor); }},
    {"stroke", [](Style& s, std::string_view value) { parsePaint(value, s.stroke, s.currentColor); }},
    {"color",
     [](Style& s, std::string_view value) { s.currentColor = parseColor(value).value_or(s.currentColor); }},
    {"fill-opacity", [](Style& s, std::string_view value) { s.fill.opacity = parseOpacity(value); }},
    {"stroke-opacity", [](Style& s, std::string_view value) { s.stroke.opacity = parseOpacity(value); }},
    {"opacity", [](Style& s, std::string_view value) { s.opacity = parseOpacity(value); }},
    {"stroke-width",
     [](Style& s, std::string_view value) {
         s.strokeWidth = std::max(0.0, parseLength(value, s.fontSize).value_or(1));
     }},
    {"stroke-linecap",
     [](Style& s, std::string_view value) { s.lineCap = value == "round"    ? 1
                                                        : value == "square" ? 2
                                                                            : 0; }},
    {"stroke-linejoin",
     [](Style& s, std::string_view value) { s.lineJoin = value == "round"   ? 1
                                                         : value == "bevel" ? 2
                                                                            : 0; }},
    {"stroke-miterlimit",
     [](Style& s, std::string_view value) { s.miterLimit = std::max(1.0, parseNumber(value).value_or(4)); }},
    {"stroke-dashoffset",
     [](Style& s, std::string_view value) { s.dashOffset = parseLength(value, s.fontSize).value_or(0); }},
    {"stroke-dasharray", [](Style& s, std::string_view value) { s.dashes = parseDashes(value, s.fontSize); }},
    {"fill-rule", [](Style& s, std::string_view value) { s.evenOdd = value == "evenodd"; }},
    {"font-family", [](Style& s, std::string_view value) { s.font.families = parseFamilies(value); }},
    {"font-size", [](Style& s, std::string_view value) { s.fontSize = parseFontSize(value, s.fontSize); }},
    {"font-weight", [](Style& s, std::string_view value) { s.font.weight = parseWeight(value, s.font.weight); }},
    {"font-style",
     [](Style& s, std::string_view value) { s.font.italic = value == "italic" || value.starts_with("oblique"); }},
    {"text-anchor",
     [](Style& s, std::string_view value) {
         s.anchor = value == "middle" ? Anchor::Middle : value == "end" ? Anchor::End : Anchor::Start;
     }},
    {"visibility", [](Style& s, std::string_view value) { s.visible = value == "visible"; }},
    {"display", [](Style& s, std::string_view value) { s.display = value != "none"; }},
    {"letter-spacing", setSpacing},
    {"word-spacing", setSpacing},
    {"text-decoration", setDecoration},
    {"text-decoration-line", setDecoration},
    {"writing-mode",
     [](Style& s, std::string_view value) {
         s.unusualText = s.unusualText || (value != "lr-tb" && value != "horizontal-tb" && value != "lr");
     }},
    {"clip-path", setEffect},
    {"mask", setEffect},
    {"filter", setEffect},
    {"marker", setEffect},
    {"mix-blend-mode", [](Style& s, std::string_view value) { s.complex = s.complex || value != "normal"; }},
    {"shape-inside", setFlow},
    {"inline-size", setFlow},
};

} // namespace

std::string_view trimmedAscii(std::string_view text) {
    const auto begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

std::vector<std::string_view> splitWords(std::string_view text, std::string_view separators) {
    std::vector<std::string_view> words;
    for (std::size_t at = 0; (at = text.find_first_not_of(separators, at)) != std::string_view::npos;) {
        const auto end = std::min(text.find_first_of(separators, at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

std::optional<double> parseLength(std::string_view text, double fontSize) {
    static const std::map<std::string_view, double> kUnits = {
        {"", 1}, {"px", 1}, {"pt", 96.0 / 72}, {"pc", 16}, {"mm", 96 / 25.4}, {"cm", 96 / 2.54}, {"in", 96}};
    std::string_view unit;
    const auto value = parseNumber(text, &unit);
    if (!value)
        return std::nullopt;
    if (unit == "em")
        return *value * fontSize;
    const auto found = kUnits.find(unit);
    return found == kUnits.end() ? std::nullopt : std::optional(*value * found->second);
}

std::optional<Rgb> parseColor(std::string_view text) {
    static const std::map<std::string_view, Rgb> kNames = {
        {"black", {0, 0, 0}},      {"white", {255, 255, 255}},  {"gray", {128, 128, 128}},
        {"grey", {128, 128, 128}}, {"silver", {192, 192, 192}}, {"red", {255, 0, 0}},
        {"maroon", {128, 0, 0}},   {"green", {0, 128, 0}},      {"lime", {0, 255, 0}},
        {"blue", {0, 0, 255}},     {"navy", {0, 0, 128}},       {"yellow", {255, 255, 0}},
        {"olive", {128, 128, 0}},  {"orange", {255, 165, 0}},   {"purple", {128, 0, 128}},
        {"teal", {0, 128, 128}},   {"aqua", {0, 255, 255}},     {"fuchsia", {255, 0, 255}}};
    text = trimmedAscii(text);
    if (const auto named = kNames.find(text); named != kNames.end())
        return named->second;
    if (!text.empty() && text[0] == '#') {
        unsigned value = 0;
        const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), value, 16);
        if (error != std::errc() || end != text.data() + text.size())
            return std::nullopt;
        const auto part = [&](int shift, unsigned mask, unsigned factor) {
            return static_cast<std::uint8_t>((value >> shift & mask) * factor);
        };
        if (text.size() == 7)
            return Rgb{part(16, 255, 1), part(8, 255, 1), part(0, 255, 1)};
        if (text.size() == 4)
            return Rgb{part(8, 15, 17), part(4, 15, 17), part(0, 15, 17)};
        return std::nullopt;
    }
    if (text.substr(0, 4) == "rgb(" && text.back() == ')') {
        const auto words = splitWords(text.substr(4, text.size() - 5));
        if (words.size() != 3)
            return std::nullopt;
        std::array<std::uint8_t, 3> parts{};
        for (std::size_t i = 0; i < 3; ++i) {
            std::string_view rest;
            const auto value = parseNumber(words[i], &rest);
            if (!value)
                return std::nullopt;
            parts[i] = static_cast<std::uint8_t>(std::clamp(rest == "%" ? *value * 2.55 : *value, 0.0, 255.0));
        }
        return Rgb{parts[0], parts[1], parts[2]};
    }
    return std::nullopt;
}

Style Style::inherited() const {
    Style child = *this;
    child.opacity = 1;
    child.display = true;
    child.complex = false;
    child.flowed = false;
    return child;
}

void Style::apply(std::string_view property, std::string_view value) {
    if (const auto mark = value.find("!important"); mark != std::string_view::npos)
        value = value.substr(0, mark);
    value = trimmedAscii(value);
    if (value.empty() || value == "inherit")
        return;
    const auto known = kProperties.find(property.starts_with("marker") ? "marker" : property);
    if (known != kProperties.end())
        known->second(*this, value);
}

bool StyleSheet::Selector::matches(std::string_view name, const std::vector<std::string_view>& classes,
                                   std::string_view ownId) const {
    return (element.empty() || element == name) && (id.empty() || id == ownId) &&
           (cssClass.empty() || std::find(classes.begin(), classes.end(), cssClass) != classes.end());
}

std::vector<StyleSheet::Declaration> parseDeclarations(std::string_view text) {
    std::vector<StyleSheet::Declaration> declarations;
    for (const auto part : splitWords(text, ";")) {
        const auto colon = part.find(':');
        if (colon != std::string_view::npos)
            declarations.emplace_back(trimmedAscii(part.substr(0, colon)), trimmedAscii(part.substr(colon + 1)));
    }
    return declarations;
}

void StyleSheet::add(std::string_view source) {
    if (source.find("@import") != std::string_view::npos)
        throw Fault(kLayoutRefused, "Verweis nach außen ist nicht erlaubt: @import");
    std::string text;
    for (std::size_t i = 0; i < source.size();) {
        if (source.substr(i, 2) == "/*") {
            i = std::min(source.find("*/", i + 2), source.size() - 2) + 2;
            continue;
        }
        text += source[i++];
    }
    std::string_view rest = text;
    for (std::size_t open = 0; (open = rest.find('{')) != std::string_view::npos;) {
        const auto close = std::min(rest.find('}', open), rest.size());
        const auto declarations = parseDeclarations(rest.substr(open + 1, close - open - 1));
        for (const auto part : splitWords(rest.substr(0, open), ",")) {
            const auto selector = trimmedAscii(part);
            const auto mark = std::min(selector.find_first_of(".#"), selector.size());
            Selector found;
            found.element = selector.substr(0, mark) == "*" ? "" : selector.substr(0, mark);
            if (mark < selector.size())
                (selector[mark] == '.' ? found.cssClass : found.id) = selector.substr(mark + 1);
            if (selector.find_first_of(" \t\r\n>+~:[@") != std::string_view::npos ||
                selector.find_first_of(".#", mark + 1) != std::string_view::npos)
                ignored_.emplace_back(selector);
            else
                rules_.push_back({found, declarations});
        }
        rest.remove_prefix(std::min(close + 1, rest.size()));
    }
    std::stable_sort(rules_.begin(), rules_.end(), [](const Rule& a, const Rule& b) {
        return a.selector.specificity() < b.selector.specificity();
    });
}

void StyleSheet::apply(Style& style, std::string_view name, std::string_view classes, std::string_view id) const {
    const auto list = splitWords(classes);
    for (const auto& rule : rules_)
        if (rule.selector.matches(name, list, id))
            for (const auto& [property, value] : rule.declarations)
                style.apply(property, value);
}

} // namespace kvtdruck::druckwerk
