// Outlines of SVG shapes as lines and Bézier curves.
#pragma once

#include "druckwerk/common/geometry.h"

#include <array>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// One step of an outline: 'M', 'L' (one point), 'C' (three points) or 'Z' (none).
struct Segment {
    char kind = 'M';
    std::array<Point, 3> points{};
};
using Outline = std::vector<Segment>;

/// The outline of SVG path data; where the data are damaged, what comes before the damage, as SVG asks, and `whole`
/// is false.
Outline parsePath(std::string_view data, bool& whole);
/// The same for the points of a polygon or a line.
Outline parsePolygon(std::string_view points, bool closed, bool& whole);
Outline rectangle(const Box& box, double rx, double ry);
Outline ellipse(Point center, double rx, double ry);
void transform(Outline& outline, const Matrix& matrix);

} // namespace kvtdruck::druckwerk
