#include "druckwerk/exits/palette.h"

#include "druckwerk/svg/xml_tree.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace kvtdruck::druckwerk {
namespace {

/// The layer that lists the variables and fields. It lies beside the page while the designer is open and is taken
/// out of the layout afterwards.
constexpr const char* kPalette = "Feldliste";
/// Where objects go that the user has left in the palette's layer.
constexpr const char* kBackground = "Hintergrund";
/// What a text of the palette was when the designer was opened.
constexpr const char* kMark = "data-feldliste";

/// Millimetres of the palette: its distance from the page, the height of a line, the width of a column, the place
/// of the notes in it and its lines.
constexpr double kGap = 10;
constexpr double kEntryHeight = 6;
constexpr double kColumnWidth = 190;
constexpr double kNotes = 70;
constexpr int kLinesPerColumn = 45;
/// Letters of a value and of a whole note.
constexpr std::size_t kLongestValue = 30;
constexpr std::size_t kLongestNote = 75;
constexpr const char* kName = "font-size:3.5px;font-weight:normal";
constexpr const char* kHeadingStyle = "font-size:3.5px;font-weight:bold";
constexpr const char* kNote = "font-size:3px;fill:#5c6873";

constexpr const char* kSvg = "http://www.w3.org/2000/svg";

void makeLayer(xmlNode* group, const char* label) {
    setInkscape(group, "groupmode", "layer");
    setLabel(group, label);
}

std::vector<xmlNode*> childrenOf(xmlNode* node) {
    std::vector<xmlNode*> children;
    forEachChild(node, [&](xmlNode* child) { children.push_back(child); });
    return children;
}

/// Place and text of a palette's text.
std::string describe(xmlNode* text) {
    std::string description;
    for (const char* name : {"x", "y", "transform"})
        description += attribute(text, name) + " ";
    return description + textWithin(text);
}

/// Takes the palette out; gives whether the user has left anything in it.
bool removePalette(xmlNode* svg) {
    bool kept = false;
    for (xmlNode* palette : childrenOf(svg)) {
        if (layerLabel(palette) != kPalette)
            continue;
        for (xmlNode* text : childrenOf(palette))
            if (hasAttribute(text, kMark) && attribute(text, kMark) == describe(text))
                removeNode(text);
        if (childrenOf(palette).empty()) {
            removeNode(palette);
        } else {
            makeLayer(palette, kBackground);
            kept = true;
        }
    }
    forEachElement(svg, [](xmlNode* node) { xmlUnsetProp(node, xml(kMark)); });
    return kept;
}

/// The page's width in the units in which the layout is drawn.
double pageWidth(const xmlNode* svg) {
    std::istringstream viewBox(attribute(svg, "viewBox"));
    double left = 0, top = 0, width = 0;
    viewBox >> left >> top >> width;
    return width > 0 ? left + width : std::strtod(attribute(svg, "width").c_str(), nullptr);
}

void addText(xmlNode* layer, double x, double y, const std::string& text, const char* look) {
    xmlNode* node = xmlNewChild(layer, nullptr, xml("text"), nullptr);
    const auto set = [&](const char* name, double value) {
        std::array<char, 32> digits{};
        std::snprintf(digits.data(), digits.size(), "%g", value);
        xmlSetProp(node, xml(name), xml(digits.data()));
    };
    set("x", x);
    set("y", y);
    xmlSetProp(node, xml("style"), xml(("font-family:'Liberation Sans';" + std::string(look)).c_str()));
    xmlNodeAddContent(node, xml(text.c_str()));
    xmlSetProp(node, xml(kMark), xml(describe(node).c_str()));
}

/// At most `most` letters of a UTF-8 text, on one line.
std::string shortened(std::string text, std::size_t most) {
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    std::size_t letters = 0;
    for (std::size_t at = 0; at < text.size(); ++at)
        if ((static_cast<unsigned char>(text[at]) & 0xc0U) != 0x80U && letters++ == most)
            return text.substr(0, at) + "…";
    return text;
}

void addEntry(xmlNode* layer, double x, double y, const Definition& definition, const FieldNotes& notes) {
    const auto note = notes(definition);
    addText(layer, x, y, "{{" + definition.name + (note.pattern.empty() ? "" : "|" + note.pattern) + "}}", kName);
    const auto value = shortened(definition.value, kLongestValue);
    const auto about =
        shortened(value + (value.empty() || note.meaning.empty() ? "" : " · ") + note.meaning, kLongestNote);
    if (!about.empty())
        addText(layer, x + kNotes, y, about, kNote);
}

/// One column of texts beside the page for the variables, then one for the fields, each as long as it takes. The
/// layer is the lowest one, since the designer puts new objects into the topmost.
void addPalette(xmlNode* svg, const std::vector<Definition>& definitions, const FieldNotes& notes) {
    const auto children = childrenOf(svg);
    const auto lowest =
        std::find_if(children.begin(), children.end(), [](const xmlNode* child) { return svgName(child) == "g"; });
    xmlNode* layer = xmlNewDocNode(svg->doc, xmlSearchNsByHref(svg->doc, svg, xml(kSvg)), xml("g"), nullptr);
    lowest == children.end() ? xmlAddChild(svg, layer) : xmlAddPrevSibling(*lowest, layer);
    makeLayer(layer, kPalette);
    double x = pageWidth(svg) + kGap;
    for (const bool fields : {false, true}) {
        int line = 0;
        addText(layer, x, 0, fields ? "Felder" : "Variablen", kHeadingStyle);
        for (const auto& definition : definitions) {
            if (definition.field != fields)
                continue;
            if (line == kLinesPerColumn) {
                line = 0;
                x += kColumnWidth;
            }
            addEntry(layer, x, ++line * kEntryHeight, definition, notes);
        }
        x += kColumnWidth;
    }
}

} // namespace

std::optional<std::string> withPalette(const std::string& svg, const std::vector<Definition>& definitions,
                                       const FieldNotes& notes) {
    XmlError ignored;
    const XmlDocument document = parseXml(svg, ignored, Cdata::Keep);
    if (!document)
        return std::nullopt;
    removePalette(xmlDocGetRootElement(document.get()));
    addPalette(xmlDocGetRootElement(document.get()), definitions, notes);
    return textOf(document.get());
}

std::optional<std::string> withoutPalette(const std::string& svg, bool& hasStrays) {
    XmlError ignored;
    const XmlDocument document = parseXml(svg, ignored, Cdata::Keep);
    if (!document)
        return std::nullopt;
    hasStrays = removePalette(xmlDocGetRootElement(document.get()));
    return textOf(document.get());
}

} // namespace kvtdruck::druckwerk
