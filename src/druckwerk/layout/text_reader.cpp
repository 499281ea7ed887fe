// Texts and fields: pieces of a text element become one text with its place, or are left to the SVG library.
#include "druckwerk/layout/band_builder.h"
#include "druckwerk/layout/sample_marks.h"
#include "druckwerk/svg/limits.h"

#include <algorithm>

namespace kvtdruck::druckwerk {

namespace {

/// Runs of blanks and line ends become one blank; none at the ends.
std::string collapsed(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const bool blank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        if (!blank)
            out += c;
        else if (!out.empty() && out.back() != ' ')
            out += ' ';
    }
    if (!out.empty() && out.back() == ' ')
        out.pop_back();
    return out;
}

/// A piece of text with its own place and style.
struct TextPiece {
    std::string text;
    Context context;
    Point at;
};

void appendText(const char* text, const Context& context, std::vector<TextPiece>& pieces, bool& unusual) {
    const Style& style = context.style;
    const Style& first = pieces.back().context.style;
    const bool blank = collapsed(text).empty();
    if (!blank && collapsed(pieces.back().text).empty())
        pieces.back().context.style = style;
    else if (!blank &&
             (style.font != first.font || style.fontSize != first.fontSize || style.fill.color != first.fill.color))
        unusual = true;
    pieces.back().text += text;
}

double firstLength(const xmlNode* node, const char* name, double otherwise) {
    const std::string text = attribute(node, name);
    const auto words = splitWords(text);
    if (words.empty())
        return otherwise;
    const auto value = parseLength(words[0]);
    if (!value)
        invalid(std::string("ungültige Länge ") + name + "=\"" + text.substr(0, 40) + "\"");
    return *value;
}

/// The pieces of a text element: a new one wherever a tspan has a place of its own. `unusual` where only the
/// SVG library can set it.
void collectPieces(BandBuilder& band, const xmlNode* node, const Context& context, std::vector<TextPiece>& pieces,
                   bool& unusual) {
    unusual = unusual || context.style.unusualText || hasAttribute(node, "rotate") ||
              hasAttribute(node, "textLength") || hasAttribute(node, "baseline-shift");
    for (const char* shift : {"dx", "dy"})
        if (const std::string text = attribute(node, shift); !text.empty())
            unusual = unusual || parseLength(text).value_or(1) != 0;
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        if (child->type == XML_TEXT_NODE) {
            appendText(reinterpret_cast<const char*>(child->content), context, pieces, unusual);
        } else if (child->type == XML_ELEMENT_NODE && hasClass(child, kSampleClass)) {
            appendText(contentOf(child).c_str(), context, pieces, unusual); // its place and style are the sample's
        } else if (child->type == XML_ELEMENT_NODE && svgName(child) == "tspan") {
            const Context inner = band.within(context, child);
            if (!inner.style.display)
                continue;
            if (hasAttribute(child, "x") || hasAttribute(child, "y")) {
                const Point before = pieces.back().at;
                pieces.push_back(
                    {"", inner, {firstLength(child, "x", before.x), firstLength(child, "y", before.y)}});
            } else if (collapsed(pieces.back().text).empty()) {
                pieces.back().context = inner;
            }
            collectPieces(band, child, inner, pieces, unusual);
        } else if (child->type == XML_ELEMENT_NODE) {
            unusual = true; // textPath, tref
        }
    }
}

std::vector<TextPiece> piecesOf(BandBuilder& band, const xmlNode* node, const Context& context, bool& unusual) {
    if (context.style.flowed)
        invalid("Fließtext wird nicht unterstützt (shape-inside, inline-size)");
    std::vector<TextPiece> pieces = {{"", context, {firstLength(node, "x", 0), firstLength(node, "y", 0)}}};
    collectPieces(band, node, context, pieces, unusual);
    const TextPiece start = pieces[0];
    std::erase_if(pieces, [](const TextPiece& piece) { return collapsed(piece.text).empty(); });
    if (std::string label = placeholdersBehind(node); !label.empty()) {
        if (pieces.empty()) // the sample has nothing to show
            pieces.push_back(start);
        pieces.resize(1);
        pieces[0].text = std::move(label);
        if (const std::string sample = attribute(node, kSampleAttribute);
            hasAttribute(node, kSampleAttribute) && sample != contentOf(node))
            band.warn(node, "„" + contentOf(node) + "“ ist nur ein Beispielwert; gedruckt wird „" + pieces[0].text +
                                "“, die Bezeichnung des Objekts");
    }
    return pieces;
}

TextItem makeText(BandBuilder& band, const TextPiece& piece, const xmlNode* node) {
    if (piece.text.size() > limits::kTextWithPlaceholders && piece.text.find("{{") != std::string::npos)
        throw Fault(kLayoutRefused, "Text mit Platzhaltern ist länger als 10.000 Zeichen");
    const Style& style = piece.context.style;
    const Matrix& matrix = piece.context.matrix;
    std::string written = collapsed(piece.text);
    TextItem item(TextTemplate(fromUtf8(written), band.definitions(), band.aggregates(), band.target().scope));
    item.written = std::move(written);
    item.place = band.placeOf(node);
    item.font = band.reading().layout.fontNumber(style.font, item.place);
    band.note(item.text, node, piece.context.always());
    item.size = style.fontSize * matrix.scale();
    item.color = style.fill.color;
    item.anchor = style.anchor;
    item.baseline = matrix.apply(piece.at);
    if (!matrix.isUpright()) {
        const double scale = matrix.scale();
        item.turned = Matrix{matrix.a / scale, matrix.b / scale, matrix.c / scale,
                             matrix.d / scale, item.baseline.x,  item.baseline.y};
    }
    item.line = static_cast<int>(lineOf(node));
    item.element = numberOf(node);
    return item;
}

void addText(BandBuilder& band, TextItem item, const Context& context) {
    const Style& style = context.style;
    if (!style.visible || style.fill.kind == Paint::Kind::None || item.size < 0.1)
        return;
    if (item.size > 1000)
        invalid("Schrift größer als 1000 Punkt");
    const bool late = band.target().isFooter && item.text.hasAggregates();
    if (item.text.hasPageCount() && (item.turned || item.fit == Fit::Wrap))
        invalid("{{Seiten}} geht nur in aufrechtem, einzeiligem Text");
    if (item.grows && band.target().flows)
        band.grow();
    band.add(std::move(item), context).late = late;
}

bool isFromBottom(const xmlNode* node, const TextItem& item) {
    const std::string align = attribute(node, "data-align");
    if (!align.empty() && align != "top" && align != "bottom")
        invalid("data-align=\"" + align + "\" gibt es nicht (top, bottom)");
    if (align == "bottom" && (item.fit != Fit::Wrap || item.grows))
        invalid("data-align=\"bottom\" braucht data-fit=\"wrap\" ohne data-grow");
    return align == "bottom";
}

Fit fitOf(const xmlNode* node, const TextItem& item) {
    const std::string fit = attribute(node, "data-fit");
    if (fit == "wrap")
        return Fit::Wrap;
    if (fit == "shrink" || (fit.empty() && item.text.isLoneNumber()))
        return Fit::Shrink;
    if (fit.empty() || fit == "cut")
        return Fit::Cut;
    invalid("data-fit=\"" + fit + "\" gibt es nicht (cut, shrink, wrap)");
}

} // namespace

void readText(BandBuilder& band, xmlNode* node, const Context& context, bool plain) {
    const Style& style = context.style;
    const bool opaque = style.opacity * style.fill.opacity * style.fill.alpha > 0.999;
    bool unusual = !plain || !opaque || style.stroke.kind != Paint::Kind::None;
    std::vector<TextPiece> pieces = piecesOf(band, node, context, unusual);
    if (pieces.empty())
        return;
    if (containsText(node, "{{") || !placeholdersBehind(node).empty()) {
        for (std::size_t i = 1; i < pieces.size(); ++i)
            pieces[0].text += " " + pieces[i].text;
        pieces.resize(1);
        if (unusual)
            band.warn(
                node,
                "Text mit Platzhaltern wird in einer Farbe und einer Schrift, deckend und ohne Abstände, Linien "
                "oder Umriss gedruckt");
    } else if (unusual) {
        readForeign(band, node, context);
        return;
    }
    for (const TextPiece& piece : pieces)
        addText(band, makeText(band, piece, node), piece.context);
}

void findParts(BandBuilder& band, xmlNode* node, const Context& context, FieldParts& parts) {
    forEachChild(node, [&](xmlNode* child) {
        const auto name = svgName(child);
        if (name == "flowRoot")
            invalid("Fließtext wird in Feldern nicht unterstützt");
        if ((name != "g" && name != "rect" && name != "text") || hasClass(child, kSampleClass))
            return;
        if (hasAttribute(child, "data-class"))
            invalid("data-class gehört an die Gruppe des Feldes oder Diagramms");
        const Context inner = band.within(context, child);
        if (name == "g") {
            findParts(band, child, inner, parts);
        } else if (name == "rect" && parts.rect == nullptr) {
            parts.rect = child;
            parts.rectContext = inner;
        } else if (name == "text" && parts.text == nullptr) {
            parts.text = child;
            parts.textContext = inner;
        }
    });
}

void readField(BandBuilder& band, xmlNode* node, const Context& context) {
    FieldParts parts;
    findParts(band, node, context, parts);
    if (parts.text == nullptr)
        invalid("Feld ohne Text");
    if (parts.rect == nullptr)
        invalid("Feld ohne Rechteck");
    const Box box = boxOf(parts.rect, parts.rectContext.matrix, "Feldrahmen");
    if (!parts.textContext.matrix.isUpright())
        invalid("Feldtext ist gedreht");
    bool unusual = false;
    std::vector<TextPiece> pieces = piecesOf(band, parts.text, parts.textContext, unusual);
    if (pieces.empty())
        return;
    for (std::size_t i = 1; i < pieces.size(); ++i)
        pieces[0].text += " " + pieces[i].text;
    TextItem item = makeText(band, pieces[0], node);
    item.box = box;
    item.fit = fitOf(node, item);
    item.grows = hasAttribute(node, "data-grow") && attribute(node, "data-grow") != "0";
    if (item.grows && item.fit != Fit::Wrap)
        invalid("data-grow braucht data-fit=\"wrap\"");
    item.fromBottom = isFromBottom(node, item);
    addText(band, std::move(item), pieces[0].context);
}

} // namespace kvtdruck::druckwerk
