// From SVG to bands: geometry with all transforms applied, styles computed, placeholders and expressions compiled.
#include "druckwerk/common/fault.h"
#include "druckwerk/layout/layout.h"
#include "druckwerk/svg/svg_file.h"
#include "druckwerk/svg/transform_list.h"

#include <algorithm>
#include <array>
#include <map>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kPointsPerUnit = 72.0 / 96;      // of CSS: 96 to the inch
constexpr double kMaximumPage = 2000 * 72 / 25.4; // 2 m
constexpr double kEdgeTolerance = 0.5 * 72 / 25.4;

/// What holds for an element through its ancestors.
struct Context {
    Matrix matrix;
    Style style;
    std::vector<std::shared_ptr<const Expression>> conditions;
};

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

class LayoutReader {
  public:
    LayoutReader(const std::string& source, const std::string& name, const std::filesystem::path& folder,
                 Definitions& definitions, std::vector<Finding>& findings)
        : name_(name), definitions_(definitions), findings_(findings), file_(source, folder) {}

    Layout read() {
        readPage();
        readStyleSheets();
        findGroups();
        bool layers = false;
        forEachChild(file_.root(), [&](xmlNode* node) {
            const bool layer = svgName(node) == "g" && !attribute(node, "label").empty();
            layers = layers || layer;
            located(node, [&] { layer ? readLayer(node) : readLoose(node); });
        });
        if (!layers)
            report(kLayoutInvalid, nullptr,
                   "Keine Ebenen gefunden; als „Inkscape-SVG“ speichern, nicht als „normales SVG“");
        if (!layout_.foreignIds.empty())
            layout_.foreignSource = file_.text();
        return std::move(layout_);
    }

  private:
    // --- messages ---

    void report(std::int32_t code, const xmlNode* node, const std::string& reason, bool error = true) {
        std::string message = name_;
        if (node != nullptr) {
            message += ", Zeile " + std::to_string(lineOf(node));
            if (!layer_.empty())
                message += ", Ebene „" + layer_ + "“";
            const std::string id = attribute(node, "id");
            message += ", <" + std::string(localName(node)) + (id.empty() ? "" : " id=\"" + id + "\"") + ">";
        }
        findings_.push_back({error, code, message + ": " + reason});
    }

    /// Runs `step`; a fault in it is reported with the place of `node`, and reading goes on behind it.
    template <class Step>
    void located(const xmlNode* node, const Step& step) {
        try {
            step();
        } catch (const Fault& fault) {
            report(fault.code(), node, fault.what());
        }
    }

    [[noreturn]] static void invalid(const std::string& reason) { throw Fault(kLayoutInvalid, reason); }

    // --- page ---

    void readPage() {
        const xmlNode* root = file_.root();
        if (svgName(root) != "svg")
            throw Fault(kLayoutMalformed,
                        name_ + ": Wurzelelement ist nicht <svg> (Namensraum http://www.w3.org/2000/svg)");
        const auto fail = [&] {
            throw Fault(kLayoutInvalid, name_ + ", Zeile " + std::to_string(lineOf(root)) +
                                            ": Seitengröße fehlt oder ist ungültig (width, height, viewBox)");
        };
        const auto width = parseLength(attribute(root, "width"));
        const auto height = parseLength(attribute(root, "height"));
        if (!width || !height || *width <= 0 || *height <= 0)
            fail();
        layout_.width = *width * kPointsPerUnit;
        layout_.height = *height * kPointsPerUnit;
        std::array<double, 4> box = {0, 0, *width, *height};
        const std::string viewBox = attribute(root, "viewBox");
        const auto words = splitWords(viewBox);
        for (std::size_t i = 0; i < words.size() && i < box.size(); ++i)
            box[i] = parseLength(words[i]).value_or(0);
        if ((!words.empty() && words.size() != box.size()) || box[2] <= 0 || box[3] <= 0 ||
            layout_.width > kMaximumPage || layout_.height > kMaximumPage)
            fail();
        const double scale = layout_.width / box[2];
        if (std::fabs(layout_.height / box[3] / scale - 1) > 0.005)
            throw Fault(kLayoutInvalid, name_ + ", Zeile " + std::to_string(lineOf(root)) +
                                            ": viewBox und Seitengröße haben verschiedene Seitenverhältnisse");
        root_.matrix = Matrix{scale, 0, 0, scale, -box[0] * scale, -box[1] * scale};
    }

    void readStyleSheets() {
        forEachElement(file_.root(), [&](xmlNode* node) {
            if (svgName(node) != "style")
                return;
            located(node, [&] {
                std::string text;
                for (const xmlNode* part = node->children; part != nullptr; part = part->next)
                    if (part->content != nullptr)
                        text += reinterpret_cast<const char*>(part->content);
                sheet_.add(text);
            });
        });
        for (const auto& selector : sheet_.ignored())
            report(kLayoutInvalid, nullptr, "Auswahl „" + selector + "“ im Stil wird nicht unterstützt", false);
        applyStyle(file_.root(), root_.style);
    }

    void applyStyle(const xmlNode* node, Style& style) const {
        for (const xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next) {
            const auto* property = reinterpret_cast<const char*>(attr->name);
            style.apply(property, attribute(node, property));
        }
        sheet_.apply(style, localName(node), attribute(node, "class"), attribute(node, "id"));
        for (const auto& [property, value] : parseDeclarations(attribute(node, "style")))
            style.apply(property, value);
    }

    // --- layers ---

    static bool isKind(std::string_view label, std::string_view kind) {
        return label == kind ||
               (label.size() > kind.size() && label.substr(0, kind.size()) == kind && label[kind.size()] == ' ');
    }

    void findGroups() {
        forEachChild(file_.root(), [&](xmlNode* node) {
            const std::string label = attribute(node, "label");
            if (svgName(node) != "g" || (!isKind(label, "Gruppenkopf") && !isKind(label, "Gruppenfuß")))
                return;
            Style style;
            applyStyle(node, style);
            layer_ = label;
            located(node, [&] {
                if (style.display)
                    addGroup(keysOf(node));
            });
        });
        layer_.clear();
    }

    static std::vector<std::string> keysOf(const xmlNode* node) {
        const std::string names = attribute(node, "data-on");
        std::vector<std::string> keys;
        for (const auto word : splitWords(names))
            keys.emplace_back(word);
        return keys;
    }

    static std::string joined(const std::vector<std::string>& keys) {
        std::string name;
        for (const auto& key : keys)
            name += key + ",";
        return name;
    }

    void addGroup(const std::vector<std::string>& keys) {
        if (keys.empty())
            invalid("Ebene braucht data-on mit dem Namen, bei dessen Wechsel eine Gruppe beginnt");
        if (groupLevel(keys) >= 0)
            return;
        Group& group = layout_.groups.emplace_back();
        group.name = joined(keys);
        for (const auto& key : keys) {
            group.keys.push_back(definitions_.slotOf(fromUtf8(key)));
            definitions_.keep(group.keys.back(), Moment::Printed);
        }
        noteSlots(group.keys);
    }

    int groupLevel(const std::vector<std::string>& keys) const {
        const std::string name = joined(keys);
        for (std::size_t i = 0; i < layout_.groups.size(); ++i)
            if (layout_.groups[i].name == name)
                return static_cast<int>(i);
        return -1;
    }

    /// Where the band of a layer is kept, and what its aggregates and values refer to.
    struct Target {
        std::optional<Band>* single = nullptr;
        AggregateScope scope = kPageScope;
        Moment moment = Moment::PageBegin;
        bool flows = false;
        bool rowsClose = false; ///< charts of lines may stand here
    };

    Target targetOf(const std::string& label, const xmlNode* node) {
        const AggregateScope outermost = layout_.groups.empty() ? kTableScope : 0;
        if (label == "Kopf")
            return {&layout_.columnHead, kPageScope, Moment::PageBegin, false, false};
        if (label == "Seitenfuß")
            return {&layout_.footer, kPageScope, Moment::PageBegin, false, false};
        if (label == "Zeile")
            return {&layout_.row, kTableScope, Moment::Now, true, false};
        if (label == "Vortrag")
            return {&layout_.carriedIn, outermost, Moment::Printed, true, false};
        if (label == "Übertrag")
            return {&layout_.carriedOut, outermost, Moment::Printed, true, false};
        if (label == "Summe")
            return {&layout_.sum, kTableScope, Moment::Printed, true, true};
        const bool head = isKind(label, "Gruppenkopf");
        if (head || isKind(label, "Gruppenfuß")) {
            const int level = groupLevel(keysOf(node));
            if (level < 0)
                return {nullptr, kTableScope, Moment::Now, true, false}; // reported already
            Group& group = layout_.groups[static_cast<std::size_t>(level)];
            return {head ? &group.head : &group.foot, level, head ? Moment::Now : Moment::Printed, true, !head};
        }
        return {};
    }

    void readLayer(xmlNode* node) {
        layer_ = attribute(node, "label");
        Context context = within(root_, node);
        if (!context.style.display) {
            layer_.clear();
            return;
        }
        context.conditions.clear(); // a layer's own condition is its band's
        target_ = targetOf(layer_, node);
        Band band;
        band.label = layer_;
        band.line = static_cast<int>(lineOf(node));
        hasBandRect_ = false;
        located(node, [&] { readBandAttributes(node, band); });
        band_ = &band;
        forEachChild(node, [&](xmlNode* child) { readElement(child, context); });
        band_ = nullptr;
        finishBand(node, band);
        if (target_.single != nullptr) {
            if (*target_.single)
                report(kLayoutInvalid, node, "Ebene gibt es zweimal");
            target_.single->emplace(std::move(band));
        } else if (!target_.flows) {
            const bool beneath = layer_ == "Hintergrund";
            layout_.page.insert(beneath ? layout_.page.begin() : layout_.page.end(), std::move(band));
        }
        layer_.clear();
    }

    void finishBand(const xmlNode* node, Band& band) {
        const bool needsRect = target_.flows || target_.single == &layout_.footer;
        if (needsRect && !hasBandRect_)
            report(kLayoutInvalid, node, "Ebene „" + layer_ + "“ hat kein Rechteck der Klasse „band“");
        for (Item& item : band.items)
            if (auto* shape = std::get_if<Shape>(&item.content)) {
                const double edge = band.bottom() - kEdgeTolerance;
                shape->atEdge = target_.flows &&
                                std::any_of(shape->outline.begin(), shape->outline.end(), [&](const Segment& s) {
                                    return s.kind != 'Z' && s.points[0].y >= edge;
                                });
                shape->compiled = shape->operators(layout_.height);
            }
    }

    void readBandAttributes(const xmlNode* node, Band& band) {
        const auto condition = [&](const char* name, std::optional<Expression>& into, AggregateScope scope) {
            const std::string text = attribute(node, name);
            if (text.empty())
                return;
            into.emplace(fromUtf8(text), definitions_, &layout_.aggregates, scope);
            noteSlots(into->slots());
        };
        condition("data-if", band.condition, target_.scope);
        condition("data-new-page", band.newPage, target_.scope);
        band.repeats = hasAttribute(node, "data-repeat");
        const std::string bookmark = attribute(node, "data-bookmark");
        for (std::size_t begin = 0; !bookmark.empty() && begin <= bookmark.size();) {
            const auto end = std::min(bookmark.find(" / ", begin), bookmark.size());
            band.bookmark.emplace_back(fromUtf8(bookmark.substr(begin, end - begin)), definitions_,
                                       layout_.aggregates, target_.scope);
            noteSlots(band.bookmark.back().slots());
            begin = end + 3;
        }
    }

    /// What lies outside of all layers is printed beneath everything.
    void readLoose(xmlNode* node) {
        layer_.clear();
        target_ = {};
        Band band;
        band.line = static_cast<int>(lineOf(node));
        band_ = &band;
        readElement(node, root_);
        band_ = nullptr;
        finishBand(node, band);
        if (!band.items.empty())
            layout_.page.insert(layout_.page.begin(), std::move(band));
    }

    /// Remembers what the layout shows. What only elements with a condition show may be missing (`needed` is
    /// false): the condition tells when it is there.
    void noteSlots(const std::vector<std::size_t>& slots, bool needed = true) {
        for (const std::size_t slot : slots) {
            layout_.slots.insert(slot);
            if (needed)
                layout_.neededSlots.insert(slot);
            if (target_.moment != Moment::Now)
                definitions_.keep(slot, target_.moment);
        }
    }

    // --- elements ---

    Context within(const Context& outer, const xmlNode* node) {
        Context context{outer.matrix * parseTransform(attribute(node, "transform")), outer.style.inherited(),
                        outer.conditions};
        applyStyle(node, context.style);
        const std::string condition = attribute(node, "data-if");
        if (!condition.empty() && band_ != nullptr) {
            auto expression =
                std::make_shared<Expression>(fromUtf8(condition), definitions_, &layout_.aggregates, target_.scope);
            noteSlots(expression->slots());
            context.conditions.push_back(std::move(expression));
        }
        return context;
    }

    void readElement(xmlNode* node, const Context& outer) {
        located(node, [&] {
            static const std::array<std::string_view, 14> kInvisible = {
                "defs",   "metadata", "title",   "desc",   "style",          "clipPath",       "mask",
                "marker", "symbol",   "pattern", "filter", "linearGradient", "radialGradient", "view"};
            const auto name = svgName(node);
            if (name.empty() || std::find(kInvisible.begin(), kInvisible.end(), name) != kInvisible.end())
                return;
            const Context context = within(outer, node);
            if (!context.style.display)
                return;
            if (name == "rect" && hasClass(node, "band"))
                readBandRect(node, context);
            else if (hasClass(node, "field"))
                readField(node, context);
            else if (hasClass(node, "chart"))
                readChart(node, context);
            else
                readArtwork(node, name, context);
        });
    }

    void readBandRect(const xmlNode* node, const Context& context) {
        const Box box = boxOf(node, context.matrix, "Band-Rechteck");
        band_->top = box.y;
        band_->height = box.height;
        hasBandRect_ = true;
    }

    double length(const xmlNode* node, const char* name, double otherwise = 0) const {
        const std::string text = attribute(node, name);
        if (text.empty() || text == "auto")
            return otherwise;
        const auto value = parseLength(text);
        if (!value)
            invalid(std::string("ungültige Länge ") + name + "=\"" + text.substr(0, 40) + "\"");
        return *value;
    }

    Box boxOf(const xmlNode* node, const Matrix& matrix, const char* what) const {
        if (!matrix.isUpright())
            invalid(std::string(what) + " ist gedreht");
        const Point from = matrix.apply({length(node, "x"), length(node, "y")});
        const Box box{from.x, from.y, length(node, "width") * matrix.a, length(node, "height") * matrix.d};
        if (box.width <= 0 || box.height <= 0)
            invalid(std::string(what) + " hat keine Ausdehnung");
        return box;
    }

    static bool containsText(const xmlNode* node, std::string_view what) {
        bool found = false;
        forEachElement(const_cast<xmlNode*>(node), [&](const xmlNode* element) {
            for (const xmlNode* child = element->children; child != nullptr; child = child->next)
                if (child->type == XML_TEXT_NODE)
                    found = found || std::string_view(reinterpret_cast<const char*>(child->content)).find(what) !=
                                         std::string_view::npos;
        });
        return found;
    }

    void readArtwork(xmlNode* node, std::string_view name, const Context& context) {
        const Style& style = context.style;
        const bool plain =
            !style.complex && style.fill.kind != Paint::Kind::Complex && style.stroke.kind != Paint::Kind::Complex;
        if (name == "g" || name == "a") {
            if (style.complex || style.opacity < 1)
                addForeign(node, context);
            else
                forEachChild(node, [&](xmlNode* child) { readElement(child, context); });
        } else if (name == "text") {
            readText(node, context, plain);
        } else if (name == "rect" || name == "line" || name == "circle" || name == "ellipse" || name == "path" ||
                   name == "polyline" || name == "polygon") {
            if (plain)
                addShape(outlineOf(node, name), context);
            else
                addForeign(node, context);
        } else if (name == "use" || name == "image" || name == "svg" || name == "switch") {
            addForeign(node, context);
        } else if (name == "flowRoot") {
            invalid("Fließtext wird nicht unterstützt");
        } else {
            report(kLayoutInvalid, node, "Element wird nicht gedruckt", false);
        }
    }

    Outline outlineOf(const xmlNode* node, std::string_view name) const {
        if (name == "rect") {
            const double rx = length(node, "rx", length(node, "ry"));
            return rectangle({length(node, "x"), length(node, "y"), length(node, "width"), length(node, "height")},
                             rx, length(node, "ry", rx));
        }
        if (name == "line")
            return {{'M', {Point{length(node, "x1"), length(node, "y1")}}},
                    {'L', {Point{length(node, "x2"), length(node, "y2")}}}};
        if (name == "circle")
            return ellipse({length(node, "cx"), length(node, "cy")}, length(node, "r"), length(node, "r"));
        if (name == "ellipse")
            return ellipse({length(node, "cx"), length(node, "cy")}, length(node, "rx"), length(node, "ry"));
        if (name == "path")
            return parsePath(attribute(node, "d"));
        return parsePolygon(attribute(node, "points"), name == "polygon");
    }

    void addShape(Outline outline, const Context& context) {
        const Style& style = context.style;
        const bool fill = style.fill.kind == Paint::Kind::Color;
        const bool stroke = style.stroke.kind == Paint::Kind::Color && style.strokeWidth > 0;
        if (!style.visible || (!fill && !stroke) || outline.empty())
            return;
        transform(outline, context.matrix);
        Shape shape;
        shape.outline = std::move(outline);
        const double scale = context.matrix.scale();
        const auto fillOpacity = static_cast<int>(std::lround(style.fill.opacity * style.opacity * 1000));
        const auto strokeOpacity = static_cast<int>(std::lround(style.stroke.opacity * style.opacity * 1000));
        std::string special;
        if (fillOpacity < 1000 || strokeOpacity < 1000) {
            layout_.opacities.insert({fillOpacity, strokeOpacity});
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
        add(std::move(shape), context);
    }

    static std::string dashesOf(const Style& style, double scale) {
        std::string out = "[";
        for (const double dash : style.dashes) {
            appendNumber(out, dash * scale);
            out += ' ';
        }
        out += "] ";
        appendNumber(out, style.dashOffset * scale);
        return out + " d ";
    }

    template <class Content>
    void add(Content content, const Context& context) {
        band_->items.push_back({context.conditions, std::move(content), false});
    }

    void addForeign(xmlNode* node, const Context& context) {
        if (containsText(node, "{{"))
            invalid("Platzhalter in Teilen mit Verlauf, Maske, Filter oder Durchsicht sind nicht möglich");
        std::string id = attribute(node, "id");
        if (id.empty()) {
            id = "kvt-" + std::to_string(layout_.foreignIds.size());
            xmlNewProp(node, reinterpret_cast<const xmlChar*>("id"), reinterpret_cast<const xmlChar*>(id.c_str()));
        }
        ForeignItem item{id, static_cast<int>(layout_.foreignIds.size())};
        layout_.foreignIds.push_back(id);
        add(std::move(item), context);
    }

    // --- texts ---

    /// A piece of text with its own place and style.
    struct TextPiece {
        std::string text;
        Context context;
        Point at;
    };

    /// The pieces of a text element: a new one wherever a tspan has a place of its own. `unusual` where only the
    /// SVG library can set it.
    void collectPieces(const xmlNode* node, const Context& context, std::vector<TextPiece>& pieces, bool& unusual) {
        unusual = unusual || context.style.unusualText || hasAttribute(node, "rotate") ||
                  hasAttribute(node, "textLength") || hasAttribute(node, "baseline-shift");
        for (const char* shift : {"dx", "dy"})
            if (const std::string text = attribute(node, shift); !text.empty())
                unusual = unusual || parseLength(text).value_or(1) != 0;
        for (xmlNode* child = node->children; child != nullptr; child = child->next) {
            if (child->type == XML_TEXT_NODE) {
                appendText(reinterpret_cast<const char*>(child->content), context, pieces, unusual);
            } else if (child->type == XML_ELEMENT_NODE && svgName(child) == "tspan") {
                const Context inner = within(context, child);
                if (!inner.style.display)
                    continue;
                if (hasAttribute(child, "x") || hasAttribute(child, "y")) {
                    const Point before = pieces.back().at;
                    pieces.push_back(
                        {"", inner, {firstLength(child, "x", before.x), firstLength(child, "y", before.y)}});
                } else if (collapsed(pieces.back().text).empty()) {
                    pieces.back().context = inner;
                }
                collectPieces(child, inner, pieces, unusual);
            } else if (child->type == XML_ELEMENT_NODE) {
                unusual = true; // textPath, tref
            }
        }
    }

    static void appendText(const char* text, const Context& context, std::vector<TextPiece>& pieces,
                           bool& unusual) {
        const Style& style = context.style;
        const Style& first = pieces.back().context.style;
        const bool blank = collapsed(text).empty();
        if (!blank && collapsed(pieces.back().text).empty())
            pieces.back().context.style = style;
        else if (!blank && (style.font != first.font || style.fontSize != first.fontSize ||
                            style.fill.color != first.fill.color))
            unusual = true;
        pieces.back().text += text;
    }

    double firstLength(const xmlNode* node, const char* name, double otherwise) const {
        const std::string text = attribute(node, name);
        const auto words = splitWords(text);
        return words.empty() ? otherwise : parseLength(words[0]).value_or(otherwise);
    }

    std::vector<TextPiece> piecesOf(const xmlNode* node, const Context& context, bool& unusual) {
        if (context.style.flowed)
            invalid("Fließtext wird nicht unterstützt (shape-inside, inline-size)");
        std::vector<TextPiece> pieces = {{"", context, {firstLength(node, "x", 0), firstLength(node, "y", 0)}}};
        collectPieces(node, context, pieces, unusual);
        std::erase_if(pieces, [](const TextPiece& piece) { return collapsed(piece.text).empty(); });
        return pieces;
    }

    void readText(xmlNode* node, const Context& context, bool plain) {
        bool unusual = !plain || context.style.stroke.kind != Paint::Kind::None;
        std::vector<TextPiece> pieces = piecesOf(node, context, unusual);
        if (pieces.empty())
            return;
        if (containsText(node, "{{")) {
            for (std::size_t i = 1; i < pieces.size(); ++i)
                pieces[0].text += " " + pieces[i].text;
            pieces.resize(1);
        } else if (unusual) {
            addForeign(node, context);
            return;
        }
        for (const TextPiece& piece : pieces)
            addText(makeText(piece, node), piece.context);
    }

    TextItem makeText(const TextPiece& piece, const xmlNode* node) {
        const Style& style = piece.context.style;
        const Matrix& matrix = piece.context.matrix;
        TextItem item(
            TextTemplate(fromUtf8(collapsed(piece.text)), definitions_, layout_.aggregates, target_.scope));
        item.font = style.font;
        noteSlots(item.text.slots(), piece.context.conditions.empty());
        item.size = style.fontSize * matrix.scale();
        item.color = style.fill.color;
        item.anchor = style.anchor;
        item.baseline = matrix.apply(piece.at);
        if (!matrix.isUpright()) {
            const double scale = matrix.scale();
            item.turned = Matrix{matrix.a / scale, matrix.b / scale, matrix.c / scale,
                                 matrix.d / scale, item.baseline.x,  item.baseline.y};
        }
        item.description = collapsed(piece.text) + " (Zeile " + std::to_string(lineOf(node)) + ")";
        return item;
    }

    void addText(TextItem item, const Context& context) {
        const Style& style = context.style;
        if (!style.visible || style.fill.kind == Paint::Kind::None || item.size < 0.1)
            return;
        if (item.size > 1000)
            invalid("Schrift größer als 1000 Punkt");
        const bool late = target_.single == &layout_.footer && item.text.hasAggregates();
        if (item.text.hasPageCount() && (item.turned || item.fit == Fit::Wrap))
            invalid("{{Seiten}} geht nur in aufrechtem, einzeiligem Text");
        if (item.grows && target_.flows)
            band_->grows = true;
        add(std::move(item), context);
        band_->items.back().late = late;
    }

    void readField(xmlNode* node, const Context& context) {
        xmlNode* rect = nullptr;
        xmlNode* text = nullptr;
        Context rectContext;
        Context textContext;
        findParts(node, context, rect, rectContext, text, textContext);
        if (text == nullptr)
            invalid("Feld ohne Text");
        if (rect == nullptr)
            invalid("Feld ohne Rechteck");
        const Box box = boxOf(rect, rectContext.matrix, "Feldrahmen");
        if (!textContext.matrix.isUpright())
            invalid("Feldtext ist gedreht");
        bool unusual = false;
        std::vector<TextPiece> pieces = piecesOf(text, textContext, unusual);
        if (pieces.empty())
            return;
        for (std::size_t i = 1; i < pieces.size(); ++i)
            pieces[0].text += " " + pieces[i].text;
        TextItem item = makeText(pieces[0], node);
        item.box = box;
        item.fit = fitOf(node, item);
        item.grows = hasAttribute(node, "data-grow") && attribute(node, "data-grow") != "0";
        if (item.grows && item.fit != Fit::Wrap)
            invalid("data-grow braucht data-fit=\"wrap\"");
        addText(std::move(item), pieces[0].context);
    }

    static Fit fitOf(const xmlNode* node, const TextItem& item) {
        const std::string fit = attribute(node, "data-fit");
        if (fit == "wrap")
            return Fit::Wrap;
        if (fit == "shrink" || (fit.empty() && item.text.isLoneNumber()))
            return Fit::Shrink;
        if (fit.empty() || fit == "cut")
            return Fit::Cut;
        invalid("data-fit=\"" + fit + "\" gibt es nicht (cut, shrink, wrap)");
    }

    void findParts(xmlNode* node, const Context& context, xmlNode*& rect, Context& rectContext, xmlNode*& text,
                   Context& textContext) {
        forEachChild(node, [&](xmlNode* child) {
            const auto name = svgName(child);
            if (name == "flowRoot")
                invalid("Fließtext wird in Feldern nicht unterstützt");
            if (name != "g" && name != "rect" && name != "text")
                return;
            const Context inner = within(context, child);
            if (name == "g")
                findParts(child, inner, rect, rectContext, text, textContext);
            else if (name == "rect" && rect == nullptr) {
                rect = child;
                rectContext = inner;
            } else if (name == "text" && text == nullptr) {
                text = child;
                textContext = inner;
            }
        });
    }

    // --- charts ---

    static std::vector<std::string> listOf(const xmlNode* node, const char* name, const char* separators = ";") {
        std::vector<std::string> parts;
        const std::string text = attribute(node, name);
        for (const auto word : splitWords(text, separators))
            if (const auto part = trimmedAscii(word); !part.empty())
                parts.emplace_back(part);
        return parts;
    }

    void readChart(xmlNode* node, const Context& context) {
        static const std::map<std::string, Chart::Kind> kKinds = {{"bars", Chart::Kind::Bars},
                                                                  {"lines", Chart::Kind::Lines},
                                                                  {"target", Chart::Kind::Target},
                                                                  {"share", Chart::Kind::Share}};
        const auto kind = kKinds.find(attribute(node, "data-chart"));
        if (kind == kKinds.end())
            invalid("data-chart fehlt oder ist keines von bars, lines, target, share");
        xmlNode* rect = nullptr;
        xmlNode* text = nullptr;
        Context rectContext;
        Context textContext;
        findParts(node, context, rect, rectContext, text, textContext);
        if (rect == nullptr)
            invalid("Diagramm ohne Rechteck");
        auto chart = std::make_unique<Chart>();
        chart->kind = kind->second;
        chart->box = boxOf(rect, rectContext.matrix, "Rechteck des Diagramms");
        chart->font = context.style.font;
        chart->size = context.style.fontSize * context.matrix.scale();
        if (chart->size < 0.5 || chart->size > 200)
            invalid("Schriftgröße des Diagramms ist ungültig");
        chart->textColor = context.style.fill.color;
        chart->scope = target_.scope;
        chart->description = "Diagramm (Zeile " + std::to_string(lineOf(node)) + ")";
        if (const std::string format = attribute(node, "data-format"); !format.empty())
            chart->format = NumberPattern(fromUtf8(format));
        if (const std::string rows = attribute(node, "data-rows"); !rows.empty() && rows != "0") {
            if (!target_.rowsClose)
                invalid("data-rows geht nur in Summe und Gruppenfuß");
            chart->rows.emplace(fromUtf8(rows), definitions_, nullptr, target_.scope);
            noteSlots(chart->rows->slots());
            layout_.rowCharts.push_back(chart.get());
        }
        readSeries(node, *chart);
        for (const auto& label : listOf(node, "data-labels")) {
            chart->labels.emplace_back(fromUtf8(label), definitions_, layout_.aggregates, target_.scope);
            noteSlots(chart->labels.back().slots());
        }
        if (chart->rows && chart->labels.size() > 1)
            invalid("data-labels braucht mit data-rows genau eine Beschriftung");
        add(std::move(chart), context);
    }

    void readSeries(const xmlNode* node, Chart& chart) {
        static constexpr std::array<Rgb, 6> kColors = {{{0x1b, 0x3a, 0x5c},
                                                        {0x9d, 0xb8, 0xd2},
                                                        {0xd9, 0x82, 0x2b},
                                                        {0x5b, 0x8c, 0x5a},
                                                        {0x8a, 0x5a, 0x83},
                                                        {0x8c, 0x8c, 0x8c}}};
        const auto legends = listOf(node, "data-legend");
        const auto colors = listOf(node, "data-colors");
        for (const auto& text : listOf(node, "data-series")) {
            Chart::Series series;
            for (const auto& value : pointsOf(text)) {
                series.values.emplace_back(fromUtf8(value), definitions_,
                                           chart.rows ? nullptr : &layout_.aggregates, target_.scope);
                noteSlots(series.values.back().slots());
            }
            const std::size_t i = chart.series.size();
            series.legend = i < legends.size() ? legends[i] : "";
            series.color = kColors[i % kColors.size()];
            if (i < colors.size()) {
                const auto color = parseColor(colors[i]);
                if (!color)
                    invalid("Ungültige Farbe „" + colors[i] + "“");
                series.color = *color;
            }
            if (series.values.empty() || (chart.rows && series.values.size() != 1))
                invalid("Reihe „" + text + "“ braucht " +
                        (chart.rows ? "genau einen Namen" : "mindestens einen Namen"));
            chart.series.push_back(std::move(series));
        }
        if (chart.series.empty())
            invalid("data-series fehlt");
    }

    /// "A, B, =C-D, E_01..12": the names and expressions of a series, ranges written out.
    static std::vector<std::string> pointsOf(const std::string& series) {
        std::vector<std::string> points;
        for (const auto part : splitWords(series, ",")) {
            const std::string point(trimmedAscii(part));
            const auto dots = point.find("..");
            const auto digits =
                dots == std::string::npos ? dots : point.find_last_not_of("0123456789", dots - 1) + 1;
            if (dots == std::string::npos || digits >= dots) {
                points.push_back(!point.empty() && point[0] == '=' ? point.substr(1) : point);
                continue;
            }
            const std::size_t width = dots - digits;
            const auto from = parseLength(point.substr(digits, width));
            const auto to = parseLength(point.substr(dots + 2));
            if (!from || !to || *to < *from || *to - *from > 366)
                invalid("Ungültiger Bereich „" + point + "“");
            for (int i = static_cast<int>(*from); i <= static_cast<int>(*to); ++i) {
                std::string number = std::to_string(i);
                number.insert(0, width > number.size() ? width - number.size() : 0, '0');
                points.push_back(point.substr(0, digits) + number);
            }
        }
        return points;
    }

    std::string name_;
    Definitions& definitions_;
    std::vector<Finding>& findings_;
    SvgFile file_;
    StyleSheet sheet_;
    Layout layout_;
    Context root_;
    std::string layer_;
    Target target_;
    Band* band_ = nullptr;
    bool hasBandRect_ = false;
};

} // namespace

Layout readLayout(const std::string& source, const std::string& name, const std::filesystem::path& folder,
                  Definitions& definitions, std::vector<Finding>& findings) {
    try {
        return LayoutReader(source, name, folder, definitions, findings).read();
    } catch (const Fault& fault) {
        const std::string message = fault.what();
        findings.push_back({true, fault.code(), message.rfind(name, 0) == 0 ? message : name + ", " + message});
        return {};
    }
}

} // namespace kvtdruck::druckwerk
