// Shapes in plain colours become outlines with the PDF operators that paint them; what else is drawn is left to the
// SVG library.
#include "druckwerk/layout/band_builder.h"
#include "druckwerk/layout/sample_marks.h"
#include "druckwerk/pdf/pdf_syntax.h"

#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

Outline outlineOf(BandBuilder& band, const xmlNode* node, std::string_view name) {
    if (name == "rect") {
        const double rx = lengthOf(node, "rx", lengthOf(node, "ry"));
        return rectangle(
            {lengthOf(node, "x"), lengthOf(node, "y"), lengthOf(node, "width"), lengthOf(node, "height")}, rx,
            lengthOf(node, "ry", rx));
    }
    if (name == "line")
        return {{'M', {Point{lengthOf(node, "x1"), lengthOf(node, "y1")}}},
                {'L', {Point{lengthOf(node, "x2"), lengthOf(node, "y2")}}}};
    if (name == "circle")
        return ellipse({lengthOf(node, "cx"), lengthOf(node, "cy")}, lengthOf(node, "r"), lengthOf(node, "r"));
    if (name == "ellipse")
        return ellipse({lengthOf(node, "cx"), lengthOf(node, "cy")}, lengthOf(node, "rx"), lengthOf(node, "ry"));
    bool whole = true;
    Outline outline = name == "path" ? parsePath(attribute(node, "d"), whole)
                                     : parsePolygon(attribute(node, "points"), name == "polygon", whole);
    if (!whole)
        band.warn(node, "Pfad wird nur bis zu seiner ersten unverständlichen Stelle gezeichnet");
    return outline;
}

std::string dashesOf(const Style& style, double scale) {
    std::string out = "[";
    for (const double dash : style.dashes) {
        appendNumber(out, dash * scale);
        out += ' ';
    }
    out += "] ";
    appendNumber(out, style.dashOffset * scale);
    return out + " d ";
}

/// What SVG calls an element, for those who do not see it.
std::string titleOf(const xmlNode* node) {
    for (const xmlNode* child = node->children; child != nullptr; child = child->next)
        if (svgName(child) == "title")
            return contentOf(child);
    return {};
}

/// What is drawn tells those who do not see it: its title, or what is written in it.
std::string saidBy(xmlNode* node) {
    std::string said = titleOf(node);
    if (said.empty())
        forEachElement(node, [&](const xmlNode* element) {
            if (svgName(element) == "text")
                said.append(said.empty() ? "" : " ").append(contentOf(element));
        });
    return said;
}

} // namespace

double lengthOf(const xmlNode* node, const char* name, double otherwise) {
    const std::string text = attribute(node, name);
    if (text.empty() || text == "auto")
        return otherwise;
    const auto value = parseLength(text);
    if (!value)
        invalid(std::string("ungültige Länge ") + name + "=\"" + text.substr(0, 40) + "\"");
    return *value;
}

Box boxOf(const xmlNode* node, const Matrix& matrix, const char* what) {
    if (!matrix.isUpright())
        invalid(std::string(what) + " ist gedreht");
    const Point from = matrix.apply({lengthOf(node, "x"), lengthOf(node, "y")});
    const Box box{from.x, from.y, lengthOf(node, "width") * matrix.a, lengthOf(node, "height") * matrix.d};
    if (box.width <= 0 || box.height <= 0)
        invalid(std::string(what) + " hat keine Ausdehnung");
    return box;
}

bool containsText(const xmlNode* node, std::string_view what) {
    bool found = false;
    forEachElement(const_cast<xmlNode*>(node), [&](const xmlNode* element) {
        for (const xmlNode* child = element->children; child != nullptr; child = child->next)
            if (child->type == XML_TEXT_NODE)
                found = found || std::string_view(reinterpret_cast<const char*>(child->content)).find(what) !=
                                     std::string_view::npos;
    });
    return found;
}

void readShape(BandBuilder& band, const xmlNode* node, std::string_view name, const Context& context) {
    Outline outline = outlineOf(band, node, name);
    const Style& style = context.style;
    const bool fill = style.fill.kind == Paint::Kind::Color;
    const bool stroke = style.stroke.kind == Paint::Kind::Color && style.strokeWidth > 0;
    if (!style.visible || (!fill && !stroke) || outline.empty())
        return;
    transform(outline, context.matrix);
    Shape shape;
    shape.outline = std::move(outline);
    const double scale = context.matrix.scale();
    const auto fillOpacity =
        static_cast<int>(std::lround(style.fill.opacity * style.fill.alpha * style.opacity * 1000));
    const auto strokeOpacity =
        static_cast<int>(std::lround(style.stroke.opacity * style.stroke.alpha * style.opacity * 1000));
    std::string special;
    if (fillOpacity < 1000 || strokeOpacity < 1000) {
        band.reading().layout.opacities.insert({fillOpacity, strokeOpacity});
        special += "/O" + std::to_string(fillOpacity) + "_" + std::to_string(strokeOpacity) + " gs ";
    }
    if (stroke) {
        if (style.lineCap != 0)
            special += std::to_string(style.lineCap) + " J ";
        if (style.lineJoin != 0)
            special += std::to_string(style.lineJoin) + " j ";
        if (style.miterLimit != 10 && style.lineJoin == 0 && shape.outline.size() > 2) {
            appendNumber(special, style.miterLimit);
            special += " M ";
        }
        if (!style.dashes.empty())
            special += dashesOf(style, scale);
    }
    if (!special.empty())
        shape.before = "q " + special;
    if (fill) {
        appendColor(shape.before, style.fill.color);
        shape.before += "rg ";
    }
    if (stroke) {
        appendColor(shape.before, style.stroke.color);
        shape.before += "RG ";
        appendNumber(shape.before, style.strokeWidth * scale);
        shape.before += " w ";
    }
    shape.after = fill && stroke ? "B" : fill ? "f" : "S";
    if (fill && style.evenOdd)
        shape.after += '*';
    shape.after += special.empty() ? "\n" : " Q\n";
    band.add(std::move(shape), context);
}

bool isPicture(xmlNode* node) {
    bool isDrawing = !titleOf(node).empty() && !hasAttribute(node, kFromFile); // a file's title is the file's
    forEachElement(node, [&](const xmlNode* element) {
        for (const xmlAttr* attr = element->properties; attr != nullptr && element != node; attr = attr->next)
            isDrawing = isDrawing && !viewOf(attr->name).starts_with("data-");
        isDrawing = isDrawing && svgName(element) != "text";
    });
    return isDrawing;
}

void readForeign(BandBuilder& band, xmlNode* node, const Context& context) {
    if (context.hasLooks)
        invalid("data-class geht nicht mit Teilen mit Verlauf, Maske, Filter oder Durchsicht");
    bool filled = containsText(node, "{{");
    forEachElement(node, [&](const xmlNode* element) {
        filled = filled || (svgName(element) == "text" && !placeholdersBehind(element).empty());
    });
    if (filled)
        invalid("Platzhalter in Teilen mit Verlauf, Maske, Filter oder Durchsicht sind nicht möglich");
    Layout& layout = band.reading().layout;
    std::string id = attribute(node, "id");
    if (id.empty()) {
        id = "kvt-" + std::to_string(layout.foreign.size());
        xmlNewProp(node, xml("id"), xml(id));
    }
    band.add(ForeignItem{layout.foreign.size()}, context);
    layout.foreign.push_back({id, saidBy(node)});
}

} // namespace kvtdruck::druckwerk
