#include "druckwerk/layout/band_builder.h"
#include "druckwerk/layout/broken_words.h"
#include "druckwerk/layout/sample_marks.h"

#include <algorithm>
#include <array>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kEdgeTolerance = 0.5 * 72 / 25.4;

} // namespace

BandBuilder::BandBuilder(Reading& reading, std::string label, const Target& target, const xmlNode* node)
    : reading_(reading), target_(target) {
    band_.label = std::move(label);
    band_.place = placeOf(node);
    band_.line = static_cast<int>(lineOf(node));
}

void BandBuilder::readAttributes(const xmlNode* node) {
    const auto condition = [&](const char* name, std::optional<Expression>& into) {
        const std::string text = attribute(node, name);
        if (text.empty())
            return;
        into.emplace(fromUtf8(text), definitions(), &aggregates(), target_.scope);
        note(*into, node);
    };
    condition("data-if", band_.condition);
    condition("data-new-page", band_.newPage);
    band_.repeats = hasAttribute(node, "data-repeat");
    band_.alone = hasAttribute(node, "data-alone");
    const std::string bookmark = attribute(node, "data-bookmark");
    for (std::size_t begin = 0; !bookmark.empty() && begin <= bookmark.size();) {
        const auto end = std::min(bookmark.find(" / ", begin), bookmark.size());
        band_.bookmark.emplace_back(fromUtf8(bookmark.substr(begin, end - begin)), definitions(), aggregates(),
                                    target_.scope);
        note(band_.bookmark.back(), node);
        begin = end + 3;
    }
}

Context BandBuilder::styled(const Context& outer, const xmlNode* node) {
    Context context{outer.matrix, outer.style.inherited(), outer.conditions};
    reading_.applyStyle(node, band_.label, context.style);
    context.hasLooks = outer.hasLooks;
    context.look = outer.look;
    if (!context.look.empty())
        reading_.sheet.apply(context.style, "", context.look, "");
    context.matrix = context.matrix * context.style.transform;
    return context;
}

Context BandBuilder::within(const Context& outer, const xmlNode* node) {
    Context context = styled(outer, node);
    const std::string condition = attribute(node, "data-if");
    if (!condition.empty()) {
        Expression expression(fromUtf8(condition), definitions(), &aggregates(), target_.scope);
        note(expression, node);
        context.conditions.push_back(std::make_shared<Condition>(Condition{std::move(expression), numberOf(node)}));
        context.style.display = true; // that it is hidden in the drawing says what the sample shows, nothing else
    }
    return context;
}

void BandBuilder::readElement(xmlNode* node, const Context& outer) {
    reading_.located(node, band_.label, [&] {
        if (hasAttribute(node, "data-class") || hasAttribute(node, "data-class-if"))
            return readLooks(node, outer);
        readInLook(node, outer);
    });
}

void BandBuilder::readLooks(xmlNode* node, const Context& outer) {
    const std::string look = attribute(node, "data-class");
    const std::string condition = attribute(node, "data-class-if");
    if (look.empty() || condition.empty())
        invalid("data-class und data-class-if gehören zusammen: eine Klasse, und wann sie gilt");
    if (outer.hasLooks)
        invalid("data-class geht nicht in einem Element, das selbst data-class hat");
    if (!reading_.sheet.knows(look))
        invalid("Klasse „" + look + "“ steht in keinem Stil (als „." + look + "“)");
    const auto when = [&](const std::string& text, const std::string& shownLook) {
        Expression expression(fromUtf8(text), definitions(), &aggregates(), target_.scope);
        note(expression, node);
        Context context = outer;
        context.hasLooks = true;
        context.look = shownLook;
        context.conditions.push_back(std::make_shared<Condition>(Condition{std::move(expression), kOfLook}));
        readInLook(node, context);
    };
    when(condition, look);
    when("nicht (" + condition + ")", "");
}

void BandBuilder::readInLook(xmlNode* node, const Context& outer) {
    static const std::array<std::string_view, 14> kInvisible = {
        "defs",   "metadata", "title",   "desc",   "style",          "clipPath",       "mask",
        "marker", "symbol",   "pattern", "filter", "linearGradient", "radialGradient", "view"};
    const auto name = svgName(node);
    if (name.empty() || std::find(kInvisible.begin(), kInvisible.end(), name) != kInvisible.end() ||
        hasClass(node, kSampleClass))
        return;
    const Context context = within(outer, node);
    if (!context.style.display)
        return;
    if (name == "rect" && hasClass(node, "band"))
        readBandRect(node, context);
    else if (hasClass(node, "field"))
        readField(*this, node, context);
    else if (hasClass(node, "chart"))
        readChart(*this, node, context);
    else
        readArtwork(node, name, context);
}

void BandBuilder::readBandRect(const xmlNode* node, const Context& context) {
    const Box box = boxOf(node, context.matrix, "Band-Rechteck");
    band_.top = box.y;
    band_.height = box.height;
    hasRect_ = true;
}

void BandBuilder::readArtwork(xmlNode* node, std::string_view name, const Context& context) {
    const Style& style = context.style;
    const bool plain =
        !style.complex && style.fill.kind != Paint::Kind::Complex && style.stroke.kind != Paint::Kind::Complex;
    const bool isGroup = name == "g" || name == "a";
    const bool isShape = name == "rect" || name == "line" || name == "circle" || name == "ellipse" ||
                         name == "path" || name == "polyline" || name == "polygon";
    const bool isForeign = name == "use" || name == "image" || name == "svg" || name == "switch" ||
                           (isGroup && (style.complex || style.opacity < 1)) || (isShape && !plain) ||
                           ((isGroup || isShape) && !context.hasLooks && isPicture(node));
    if (isForeign) {
        readForeign(*this, node, context);
    } else if (isGroup) {
        forEachChild(node, [&](xmlNode* child) { readElement(child, context); });
    } else if (isShape) {
        readShape(*this, node, name, context);
    } else if (name == "text") {
        readText(*this, node, context, plain);
    } else if (name == "flowRoot") {
        invalid("Fließtext wird nicht unterstützt");
    } else {
        warn(node, "Element wird nicht gedruckt");
    }
}

Band BandBuilder::finish(const xmlNode* node) {
    if ((target_.flows || target_.isFooter) && !hasRect_)
        reading_.report(kLayoutInvalid, node, band_.label,
                        "Ebene „" + band_.label + "“ hat kein Rechteck der Klasse „band“");
    for (Item& item : band_.items)
        if (auto* shape = std::get_if<Shape>(&item.content)) {
            const double edge = band_.bottom() - kEdgeTolerance;
            shape->atEdge = target_.flows &&
                            std::any_of(shape->outline.begin(), shape->outline.end(),
                                        [&](const Segment& s) { return s.kind != 'Z' && s.points[0].y >= edge; });
            shape->compiled = shape->operators(reading_.layout.height);
        }
    joinBrokenWords(band_.items);
    return std::move(band_);
}

} // namespace kvtdruck::druckwerk
