// Points, boxes and transforms. Lengths are points (1/72 inch), y runs downwards from the page's upper edge.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kvtdruck::druckwerk {

struct Point {
    double x = 0, y = 0;
};

struct Box {
    double x = 0, y = 0, width = 0, height = 0;
    double right() const { return x + width; }
    double bottom() const { return y + height; }
};

/// The affine map of SVG: x' = a x + c y + e, y' = b x + d y + f.
struct Matrix {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    Point apply(Point p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
    /// First `inner`, then this.
    Matrix operator*(const Matrix& inner) const {
        return {a * inner.a + c * inner.b, b * inner.a + d * inner.b,     a * inner.c + c * inner.d,
                b * inner.c + d * inner.d, a * inner.e + c * inner.f + e, b * inner.e + d * inner.f + f};
    }
    /// The factor by which lengths change (the mean one, where the directions differ).
    double scale() const { return std::sqrt(std::fabs(a * d - b * c)); }
    bool isUpright() const {
        return std::fabs(b) + std::fabs(c) < 1e-6 * (std::fabs(a) + std::fabs(d)) && a > 0 && d > 0;
    }
};

struct Rgb {
    std::uint8_t red = 0, green = 0, blue = 0;
    bool operator==(const Rgb&) const = default;
};

enum class Anchor : std::uint8_t { Start, Middle, End };

/// How much of a line's width lies left of the point that it is anchored at.
inline double shareLeft(Anchor anchor) {
    return anchor == Anchor::Start ? 0 : anchor == Anchor::Middle ? 0.5 : 1;
}

} // namespace kvtdruck::druckwerk
