#include "druckwerk/structure/pieces.h"

#include <optional>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kAscent = 0.8;         // of the size
constexpr double kDescent = 0.2;        // of the size
constexpr int kBold = 600;              // and heavier
constexpr double kShortestEdge = 14;    // points: 5 mm
constexpr double kThickestLine = 1;     // points
constexpr std::size_t kMostCorners = 6; // of an area whose edges count

Box boxOf(const TextItem& text, const Measure& measure) {
    if (text.box)
        return *text.box;
    const double width = text.text.isConstant() ? measure.width(text) : text.size;
    return {text.baseline.x - width * shareLeft(text.anchor), text.baseline.y - kAscent * text.size, width,
            (kAscent + kDescent) * text.size};
}

Piece pieceOf(const TextItem& text, const Layout& layout, const Measure& measure) {
    return {.kind = Piece::Kind::Text,
            .box = boxOf(text, measure),
            .baseline = text.baseline.y,
            .size = text.size,
            .bold = layout.fonts[text.font].request.weight >= kBold,
            .constant = text.text.isConstant(),
            .loneNumber = text.text.isLoneNumber()};
}

std::optional<Box> extentOf(const Outline& outline) {
    if (outline.size() > kMostCorners)
        return std::nullopt;
    Span x{1e9, -1e9};
    Span y{1e9, -1e9};
    for (const Segment& segment : outline) {
        if (segment.kind == 'C')
            return std::nullopt;
        if (segment.kind == 'Z')
            continue;
        const Point at = segment.points.front();
        x = {std::min(x.left, at.x), std::max(x.right, at.x)};
        y = {std::min(y.left, at.y), std::max(y.right, at.y)};
    }
    return Box{x.left, y.left, x.width(), y.width()};
}

} // namespace

std::vector<Piece> piecesOf(const Band& band, const Layout& layout, const Measure& measure) {
    std::vector<Piece> pieces;
    for (std::size_t i = 0; i < band.items.size(); ++i) {
        const auto& content = band.items[i].content;
        if (const auto* text = std::get_if<TextItem>(&content)) {
            if (text->text.hasPageNumber())
                continue;
            pieces.push_back(pieceOf(*text, layout, measure));
        } else if (const auto* chart = std::get_if<std::unique_ptr<Chart>>(&content)) {
            pieces.push_back({.kind = Piece::Kind::Chart, .box = (*chart)->box});
        } else if (const auto* foreign = std::get_if<ForeignItem>(&content)) {
            const Box ink = measure.ink(*foreign);
            if (ink.width <= 0 || layout.foreign[foreign->drawing].title.empty())
                continue;
            pieces.push_back({.kind = Piece::Kind::Picture, .box = ink});
        } else {
            continue;
        }
        pieces.back().item = i;
    }
    return pieces;
}

std::vector<Edge> edgesOf(const Band& band) {
    std::vector<Edge> edges;
    for (const Item& item : band.items) {
        const auto* shape = std::get_if<Shape>(&item.content);
        const auto extent = shape == nullptr ? std::nullopt : extentOf(shape->outline);
        if (!extent || extent->width < kShortestEdge)
            continue;
        const Span span{extent->x, extent->right()};
        edges.push_back({span, extent->y});
        if (extent->height > kThickestLine)
            edges.push_back({span, extent->bottom()});
    }
    return edges;
}

} // namespace kvtdruck::druckwerk
