// What of a band says something, and the lines and areas around it, by their places: what tables are recognised by.
#pragma once

#include "druckwerk/layout/layout.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace kvtdruck::druckwerk {

/// From left to right, in points.
struct Span {
    double left = 0, right = 0;
    double width() const { return right - left; }
    double middle() const { return (left + right) / 2; }
    /// How much of both is the same.
    double shared(const Span& other) const {
        return std::max(0.0, std::min(right, other.right) - std::max(left, other.left));
    }
    /// Whether the narrower of both lies in the other one for the most part.
    bool meets(const Span& other) const {
        return shared(other) > 0 && shared(other) >= 0.5 * std::min(width(), other.width());
    }
};

/// A text, a chart or a picture of a band.
struct Piece {
    enum class Kind : std::uint8_t { Text, Chart, Picture };
    Kind kind = Kind::Text;
    std::size_t item = 0; ///< among those of its band
    Box box = {};
    double baseline = 0;
    double size = 0; ///< of the text
    bool bold = false;
    bool constant = false;   ///< the same in every document
    bool loneNumber = false; ///< one number and nothing else
    Span span() const { return {box.x, box.right()}; }
};

/// A level line, or the upper or lower edge of an area.
struct Edge {
    Span span;
    double y = 0;
};

/// What those know who draw a band.
struct Measure {
    std::function<double(const TextItem&)> width; ///< of a text that is the same in every document
    std::function<Box(const ForeignItem&)> ink;   ///< what a drawing covers, where it has a title
};

/// What `band` says. What of a page's band shows the number of pages is none of it.
std::vector<Piece> piecesOf(const Band& band, const Layout& layout, const Measure& measure);

/// The band's lines and areas of some width.
std::vector<Edge> edgesOf(const Band& band);

} // namespace kvtdruck::druckwerk
