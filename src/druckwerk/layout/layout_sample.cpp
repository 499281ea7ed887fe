#include "druckwerk/layout/layout_sample.h"

#include "druckwerk/layout/sample_marks.h"
#include "druckwerk/svg/svg_style.h"

#include <array>
#include <cstdio>

namespace kvtdruck::druckwerk {
namespace {

constexpr double kLineSpacing = 1.2; // of the size, as texts are printed

bool hasPlaceholders(const std::string& text) {
    return text.find("{{") != std::string::npos;
}

/// Hides the element, or shows it.
void setHidden(xmlNode* node, bool hidden) {
    std::string style;
    for (const auto& [property, value] : parseDeclarations(attribute(node, "style")))
        if (property != "display")
            style.append(style.empty() ? "" : ";").append(property).append(":").append(value);
    if (attribute(node, "style").find("display") != std::string::npos)
        style.empty() ? xmlUnsetProp(node, xml("style")) : xmlSetProp(node, xml("style"), xml(style)) != nullptr;
    hidden ? xmlSetProp(node, xml("display"), xml("none")) != nullptr : xmlUnsetProp(node, xml("display"));
}

/// The text that a field shows, which is the first one in it.
xmlNode* textIn(xmlNode* node) {
    if (svgName(node) == "text")
        return node;
    xmlNode* found = nullptr;
    forEachChild(node, [&](xmlNode* child) {
        if (found == nullptr && !hasClass(child, kSampleClass))
            found = textIn(child);
    });
    return found;
}

/// The first letters within the element that are no blanks; nullptr where there are none.
xmlNode* firstLetters(xmlNode* node) {
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        const bool letters = child->type == XML_TEXT_NODE && !contentOf(child).empty();
        xmlNode* found = letters ? child : child->type == XML_ELEMENT_NODE ? firstLetters(child) : nullptr;
        if (found != nullptr)
            return found;
    }
    return nullptr;
}

/// The element whose place and style the text has: the one around its first letters. It stays with those around it,
/// and nothing else of the text does.
xmlNode* clearedCarrier(xmlNode* text) {
    xmlNode* letters = firstLetters(text);
    xmlNode* carrier = letters == nullptr ? text : letters->parent;
    while (carrier != text && hasClass(carrier, kSampleClass))
        carrier = carrier->parent;
    const auto clear = [](xmlNode* node, const xmlNode* kept) {
        for (xmlNode *child = node->children, *next = nullptr; child != nullptr; child = next) {
            next = child->next;
            if (child != kept)
                removeNode(child);
        }
    };
    const xmlNode* kept = nullptr;
    for (xmlNode* node = carrier; kept != text; node = node->parent) {
        clear(node, kept);
        kept = node;
    }
    return carrier;
}

/// The attribute of the element, or of the nearest one around it that has it.
std::string inheritedAttribute(const xmlNode* node, const char* name) {
    while (!hasAttribute(node, name) && svgName(node) == "tspan")
        node = node->parent;
    return attribute(node, name);
}

std::string inEm(double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.4gem", value);
    return text.data();
}

void addLine(xmlNode* carrier, const std::string& line, const LayoutSample::Text& sample, double down) {
    xmlNode* tspan = xmlNewChild(carrier, carrier->ns, xml("tspan"), nullptr);
    xmlSetProp(tspan, xml("class"), xml(kSampleClass));
    if (sample.size < 1)
        xmlSetProp(tspan, xml("style"), xml("font-size:" + inEm(sample.size)));
    if (sample.lines.size() > 1) {
        xmlSetProp(tspan, xml("x"), xml(inheritedAttribute(carrier, "x")));
        xmlSetProp(tspan, xml("dy"), xml(inEm(down)));
    }
    xmlNodeAddContent(tspan, xml(line));
}

void setText(xmlNode* node, const LayoutSample::Text& sample) {
    xmlNode* text = textIn(node);
    if (text == nullptr || sample.lines.empty())
        return;
    if (placeholdersBehind(text).empty()) {
        const auto isFree = [](const xmlNode* owner) {
            return labelOf(owner).empty() || hasPlaceholders(labelOf(owner));
        };
        xmlNode* owner = isFree(node) ? node : text; // an object keeps the name that its author has given it
        if (!isFree(owner))
            return;
        setLabel(owner, sample.written);
    }
    xmlNode* carrier = clearedCarrier(text);
    const auto count = static_cast<double>(sample.lines.size());
    if (sample.lines.size() == 1 && sample.size == 1)
        xmlNodeAddContent(carrier, xml(sample.lines[0]));
    else
        for (std::size_t i = 0; i < sample.lines.size(); ++i)
            addLine(carrier, sample.lines[i], sample,
                    i > 0               ? kLineSpacing
                    : sample.fromBottom ? kLineSpacing * (1 - count)
                                        : 0);
    xmlSetProp(text, xml(kSampleAttribute), xml(contentOf(text)));
}

/// Gives the elements of `drawing` the name space of `ns`, which its surroundings declare already.
void adopt(xmlNode* drawing, xmlNs* ns) {
    forEachElement(drawing, [&](xmlNode* element) { xmlSetNs(element, ns); });
    xmlFreeNsList(drawing->nsDef);
    drawing->nsDef = nullptr;
}

void setChart(xmlNode* chart, const std::string& drawing) {
    std::vector<xmlNode*> old;
    forEachChild(chart, [&](xmlNode* child) {
        if (hasClass(child, kSampleClass))
            old.push_back(child);
    });
    for (xmlNode* child : old)
        removeNode(child);
    XmlError ignored;
    const XmlDocument document = parseXml(drawing, ignored);
    if (!document)
        return;
    xmlNode* copy = xmlDocCopyNode(xmlDocGetRootElement(document.get()), chart->doc, 1);
    adopt(copy, chart->ns);
    xmlAddChild(chart, copy);
}

} // namespace

std::string placeholdersBehind(const xmlNode* text) {
    if (hasPlaceholders(textWithin(text)))
        return "";
    for (const xmlNode* node = text; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent) {
        if (node != text && !hasClass(node, "field"))
            continue;
        if (std::string label = labelOf(node); hasPlaceholders(label))
            return label;
    }
    return "";
}

void showConditional(xmlNode* root) {
    forEachElement(root, [](xmlNode* node) {
        if (hasAttribute(node, "data-if") && layerLabel(node).empty())
            setHidden(node, false);
    });
}

std::optional<std::string> withSample(const std::string& svg, const LayoutSample& sample) {
    XmlError ignored;
    const XmlDocument document = parseXml(svg, ignored, Cdata::Keep);
    if (!document)
        return std::nullopt;
    std::vector<xmlNode*> elements;
    forEachElement(xmlDocGetRootElement(document.get()), [&](xmlNode* node) { elements.push_back(node); });
    const auto forEach = [&](const auto& parts, const auto& apply) {
        for (const auto& [number, part] : parts)
            if (number > 0 && static_cast<std::size_t>(number) <= elements.size())
                apply(elements[static_cast<std::size_t>(number) - 1], part);
    };
    // Texts last: their old lines are elements, too, that are gone then.
    forEach(sample.conditions, [](xmlNode* node, bool holds) { setHidden(node, !holds); });
    forEach(sample.charts, setChart);
    forEach(sample.texts, setText);
    return textOf(document.get());
}

} // namespace kvtdruck::druckwerk
