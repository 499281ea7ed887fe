#include "druckwerk/svg/svg_style.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/svg/color.h"
#include "druckwerk/svg/transform_list.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kMaximumLength = 100000;

/// Sets a property; false where the value is none that is understood.
using Setter = bool (*)(Style& style, std::string_view value);

template <class Target, class Value>
bool assign(Target& target, const std::optional<Value>& value) {
    if (value)
        target = static_cast<Target>(*value);
    return value.has_value();
}

std::optional<double> parseOpacity(std::string_view text) {
    std::string_view rest;
    const auto value = parseNumber(text, &rest);
    if (!value || (!rest.empty() && rest != "%"))
        return std::nullopt;
    return std::clamp(rest == "%" ? *value / 100 : *value, 0.0, 1.0);
}

bool parsePaint(std::string_view text, Paint& paint, Rgb currentColor) {
    const auto color = parseColor(text);
    if (text == "none" || (color && color->alpha == 0)) {
        paint.kind = Paint::Kind::None;
    } else if (text == "currentColor" || text == "currentcolor") {
        paint.kind = Paint::Kind::Color;
        paint.color = currentColor;
        paint.alpha = 1;
    } else if (color) {
        paint.kind = Paint::Kind::Color;
        paint.color = color->rgb;
        paint.alpha = color->alpha;
    } else if (text.starts_with("url(")) {
        paint.kind = Paint::Kind::Complex;
    } else {
        return false;
    }
    return true;
}

/// The place of `value` among `words`; nothing where it is none of them.
template <std::size_t count>
std::optional<int> oneOf(std::string_view value, const std::array<std::string_view, count>& words) {
    const auto* found = std::find(words.begin(), words.end(), value);
    return found == words.end() ? std::nullopt : std::optional(static_cast<int>(found - words.begin()));
}

std::optional<int> parseWeight(std::string_view text, int inherited) {
    if (text == "normal")
        return 400;
    if (text == "bold")
        return 700;
    if (text == "bolder")
        return inherited < 600 ? 700 : 900;
    if (text == "lighter")
        return inherited < 600 ? 100 : 400;
    const auto weight = parseNumber(text);
    return weight && *weight >= 1 && *weight <= 1000 ? std::optional(static_cast<int>(*weight)) : std::nullopt;
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

bool setDashes(Style& style, std::string_view text) {
    constexpr std::size_t kMost = 32;
    std::vector<double> dashes;
    double sum = 0;
    if (text != "none")
        for (const auto word : splitWords(text)) {
            const auto dash = parseLength(word, style.fontSize);
            if (!dash || *dash < 0)
                return false;
            dashes.push_back(*dash);
            sum += *dash;
        }
    if (dashes.size() > kMost)
        return false;
    style.dashes = sum > 0 ? dashes : std::vector<double>();
    return true;
}

std::optional<double> parseFontSize(std::string_view text, double inherited) {
    static const std::map<std::string_view, double> kWords = {
        {"xx-small", 9.6}, {"x-small", 12}, {"small", 14.2222}, {"medium", 16},
        {"large", 19.2},   {"x-large", 24}, {"xx-large", 32}};
    if (text == "larger")
        return inherited * 1.2;
    if (text == "smaller")
        return inherited / 1.2;
    if (const auto word = kWords.find(text); word != kWords.end())
        return word->second;
    const bool percentage = text.ends_with('%');
    const auto size = percentage ? parseNumber(text.substr(0, text.size() - 1)) : parseLength(text, inherited);
    if (!size || *size < 0)
        return std::nullopt;
    return percentage ? inherited * *size / 100 : *size;
}

bool setSpacing(Style& style, std::string_view value) {
    const auto spacing = value == "normal" ? std::optional(0.0) : parseLength(value, style.fontSize);
    style.unusualText = style.unusualText || spacing.value_or(0) != 0;
    return spacing.has_value();
}

bool setDecoration(Style& style, std::string_view value) {
    style.unusualText = style.unusualText || !value.starts_with("none");
    return true;
}

/// What hides, cuts or marks: only "none" is simple.
bool setEffect(Style& style, std::string_view value) {
    style.complex = style.complex || value != "none";
    return true;
}

bool setFlow(Style& style, std::string_view value) {
    style.flowed = style.flowed || (value != "none" && value != "auto" && value != "0");
    return true;
}

bool setTransform(Style& style, std::string_view value) {
    return assign(style.transform, parseTransform(value));
}

/// For what is not done: only the words for not doing it are understood.
bool setNormal(Style&, std::string_view value) {
    return value == "normal" || value == "none" || value == "auto";
}

const std::map<std::string_view, Setter> kProperties = {
    {"fill", [](Style& s, std::string_view value) { return parsePaint(value, s.fill, s.currentColor); }},
    {"stroke", [](Style& s, std::string_view value) { return parsePaint(value, s.stroke, s.currentColor); }},
    {"color",
     [](Style& s, std::string_view value) {
         const auto color = parseColor(value);
         return assign(s.currentColor, color ? std::optional(color->rgb) : std::nullopt);
     }},
    {"fill-opacity", [](Style& s, std::string_view value) { return assign(s.fill.opacity, parseOpacity(value)); }},
    {"stroke-opacity",
     [](Style& s, std::string_view value) { return assign(s.stroke.opacity, parseOpacity(value)); }},
    {"opacity", [](Style& s, std::string_view value) { return assign(s.opacity, parseOpacity(value)); }},
    {"stroke-width",
     [](Style& s, std::string_view value) {
         const auto width = parseLength(value, s.fontSize);
         return assign(s.strokeWidth, width && *width >= 0 ? width : std::nullopt);
     }},
    {"stroke-linecap",
     [](Style& s, std::string_view value) {
         return assign(s.lineCap, oneOf<3>(value, {"butt", "round", "square"}));
     }},
    {"stroke-linejoin",
     [](Style& s, std::string_view value) {
         return assign(s.lineJoin, oneOf<3>(value, {"miter", "round", "bevel"}));
     }},
    {"stroke-miterlimit",
     [](Style& s, std::string_view value) {
         const auto limit = parseNumber(value);
         return assign(s.miterLimit, limit && *limit >= 1 ? limit : std::nullopt);
     }},
    {"stroke-dashoffset",
     [](Style& s, std::string_view value) { return assign(s.dashOffset, parseLength(value, s.fontSize)); }},
    {"stroke-dasharray", setDashes},
    {"fill-rule",
     [](Style& s, std::string_view value) {
         return assign(s.evenOdd, oneOf<2>(value, {"nonzero", "evenodd"}));
     }},
    {"font-family",
     [](Style& s, std::string_view value) {
         s.font.families = parseFamilies(value);
         return !s.font.families.empty();
     }},
    {"font-size",
     [](Style& s, std::string_view value) { return assign(s.fontSize, parseFontSize(value, s.fontSize)); }},
    {"font-weight",
     [](Style& s, std::string_view value) { return assign(s.font.weight, parseWeight(value, s.font.weight)); }},
    {"font-style",
     [](Style& s, std::string_view value) {
         s.font.italic = value == "italic" || value.starts_with("oblique");
         return s.font.italic || value == "normal";
     }},
    {"text-anchor",
     [](Style& s, std::string_view value) {
         return assign(s.anchor, oneOf<3>(value, {"start", "middle", "end"}));
     }},
    {"visibility",
     [](Style& s, std::string_view value) {
         const auto found = oneOf<3>(value, {"visible", "hidden", "collapse"});
         s.visible = found ? *found == 0 : s.visible;
         return found.has_value();
     }},
    {"display",
     [](Style& s, std::string_view value) {
         s.display = value != "none";
         return true;
     }},
    {"letter-spacing", setSpacing},
    {"word-spacing", setSpacing},
    {"text-decoration", setDecoration},
    {"text-decoration-line", setDecoration},
    {"writing-mode",
     [](Style& s, std::string_view value) {
         s.unusualText = s.unusualText || (value != "lr-tb" && value != "horizontal-tb" && value != "lr");
         return true;
     }},
    {"clip-path", setEffect},
    {"mask", setEffect},
    {"filter", setEffect},
    {"marker", setEffect},
    {"mix-blend-mode",
     [](Style& s, std::string_view value) {
         s.complex = s.complex || value != "normal";
         return true;
     }},
    {"shape-inside", setFlow},
    {"inline-size", setFlow},
    {"transform", setTransform},
    // only what holds without them
    {"font", setNormal},
    {"font-variant", setNormal},
    {"font-stretch", setNormal},
    {"paint-order", setNormal},
    {"text-transform", setNormal},
    {"vector-effect", setNormal},
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

std::optional<double> parseNumber(std::string_view text, std::string_view* rest) {
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

Style Style::inherited() const {
    Style child = *this;
    child.opacity = 1;
    child.transform = {};
    child.display = true;
    child.complex = false;
    child.flowed = false;
    return child;
}

bool Style::apply(std::string_view property, std::string_view value) {
    if (const auto mark = value.find("!important"); mark != std::string_view::npos)
        value = value.substr(0, mark);
    value = trimmedAscii(value);
    if (value.empty() || value == "inherit")
        return true;
    const auto known = kProperties.find(property.starts_with("marker") ? "marker" : property);
    return known == kProperties.end() || known->second(*this, value);
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

std::string withoutComments(std::string_view sheet) {
    std::string text;
    for (std::size_t i = 0; i < sheet.size();) {
        if (sheet.substr(i, 2) == "/*") {
            i = std::min(sheet.find("*/", i + 2), sheet.size() - 2) + 2;
            continue;
        }
        text += sheet[i++];
    }
    return text;
}

void StyleSheet::add(std::string_view source) {
    const std::string text = withoutComments(source);
    std::string_view rest = text;
    for (std::size_t open = 0; (open = rest.find('{')) != std::string_view::npos;) {
        const auto close = std::min(rest.find('}', open), rest.size());
        const auto declarations = parseDeclarations(rest.substr(open + 1, close - open - 1));
        for (const auto& [property, value] : declarations)
            if (Style scratch; !scratch.apply(property, value))
                notUnderstood_.emplace_back(property).append(": ").append(value);
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

bool StyleSheet::knows(std::string_view cssClass) const {
    return std::any_of(rules_.begin(), rules_.end(), [&](const Rule& rule) {
        return rule.selector.cssClass == cssClass && rule.selector.element.empty() && rule.selector.id.empty();
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
