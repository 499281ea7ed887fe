#include "druckwerk/svg/path_data.h"

#include <charconv>
#include <numbers>
#include <optional>

namespace kvtdruck::druckwerk {

namespace {

constexpr double kCircle = 0.5522847498; // control points of a quarter circle, 4/3 (sqrt 2 - 1)
constexpr std::size_t kMaximumSegments = 200000;

/// Reads numbers and flags from path data.
class PathReader {
  public:
    explicit PathReader(std::string_view data) : rest_(data) {}

    void skip() {
        const auto next = rest_.find_first_not_of(" \t\r\n,");
        rest_.remove_prefix(next == std::string_view::npos ? rest_.size() : next);
    }

    /// How much is left to be read.
    std::size_t left() {
        skip();
        return rest_.size();
    }

    char command() {
        skip();
        if (rest_.empty() || std::string_view("MmLlHhVvCcSsQqTtAaZz").find(rest_[0]) == std::string_view::npos)
            return 0;
        const char found = rest_[0];
        rest_.remove_prefix(1);
        return found;
    }

    std::optional<double> number() {
        skip();
        if (!rest_.empty() && rest_[0] == '+')
            rest_.remove_prefix(1);
        double value = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
        if (error != std::errc() || !(std::fabs(value) < 1e7))
            return std::nullopt;
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return value;
    }

    std::optional<double> flag() {
        skip();
        if (rest_.empty() || (rest_[0] != '0' && rest_[0] != '1'))
            return std::nullopt;
        const double value = rest_[0] - '0';
        rest_.remove_prefix(1);
        return value;
    }

  private:
    std::string_view rest_;
};

/// An elliptical arc as curves (SVG 1.1, appendix F.6).
void appendArc(Outline& outline, Point from, double rx, double ry, double degrees, bool large, bool sweep,
               Point to) {
    rx = std::fabs(rx);
    ry = std::fabs(ry);
    if (rx < 1e-9 || ry < 1e-9) {
        outline.push_back({'L', {to}});
        return;
    }
    const double phi = degrees * std::numbers::pi / 180;
    const double cosine = std::cos(phi);
    const double sine = std::sin(phi);
    const double dx = (from.x - to.x) / 2;
    const double dy = (from.y - to.y) / 2;
    const double x = cosine * dx + sine * dy;
    const double y = -sine * dx + cosine * dy;
    const double grow = x * x / (rx * rx) + y * y / (ry * ry);
    if (grow > 1) {
        rx *= std::sqrt(grow);
        ry *= std::sqrt(grow);
    }
    const double denominator = rx * rx * y * y + ry * ry * x * x;
    if (denominator < 1e-18)
        return;
    const double root = std::sqrt(std::max(0.0, rx * rx * ry * ry / denominator - 1)) * (large == sweep ? -1 : 1);
    const double cx = root * rx * y / ry;
    const double cy = -root * ry * x / rx;
    const Matrix place{cosine * rx,
                       sine * rx,
                       -sine * ry,
                       cosine * ry,
                       cosine * cx - sine * cy + (from.x + to.x) / 2,
                       sine * cx + cosine * cy + (from.y + to.y) / 2};
    const double begin = std::atan2((y - cy) / ry, (x - cx) / rx);
    double sweepAngle = std::atan2((-y - cy) / ry, (-x - cx) / rx) - begin;
    if (sweep && sweepAngle < 0)
        sweepAngle += 2 * std::numbers::pi;
    else if (!sweep && sweepAngle > 0)
        sweepAngle -= 2 * std::numbers::pi;
    const int parts =
        std::max(1, static_cast<int>(std::ceil(std::fabs(sweepAngle) / (std::numbers::pi / 2) - 1e-9)));
    const double step = sweepAngle / parts;
    const double handle = 4.0 / 3 * std::tan(step / 4);
    for (int i = 0; i < parts; ++i) {
        const double a = begin + i * step;
        const double b = a + step;
        outline.push_back({'C',
                           {place.apply({std::cos(a) - handle * std::sin(a), std::sin(a) + handle * std::cos(a)}),
                            place.apply({std::cos(b) + handle * std::sin(b), std::sin(b) - handle * std::cos(b)}),
                            i + 1 == parts ? to : place.apply({std::cos(b), std::sin(b)})}});
    }
}

/// The state of a path while it is read.
class PathBuilder {
  public:
    bool step(char command, PathReader& reader) {
        const bool relative = command >= 'a';
        const Point base = relative ? at_ : Point{};
        const auto point = [&]() -> std::optional<Point> {
            const auto x = reader.number();
            const auto y = x ? reader.number() : std::nullopt;
            return y ? std::optional(Point{base.x + *x, base.y + *y}) : std::nullopt;
        };
        switch (command & ~0x20) {
        case 'M':
        case 'L': {
            const auto to = point();
            return to && move((command & ~0x20) == 'M' ? 'M' : 'L', *to);
        }
        case 'H': {
            const auto x = reader.number();
            return x && move('L', {base.x + *x, at_.y});
        }
        case 'V': {
            const auto y = reader.number();
            return y && move('L', {at_.x, base.y + *y});
        }
        case 'C': {
            const auto first = point();
            const auto second = first ? point() : std::nullopt;
            const auto to = second ? point() : std::nullopt;
            return to && curve(*first, *second, *to, 'C');
        }
        case 'S': {
            const auto second = point();
            const auto to = second ? point() : std::nullopt;
            return to && curve(reflected('C'), *second, *to, 'C');
        }
        case 'Q': {
            const auto control = point();
            const auto to = control ? point() : std::nullopt;
            return to && quadratic(*control, *to);
        }
        case 'T': {
            const auto to = point();
            return to && quadratic(reflected('Q'), *to);
        }
        default:
            return arc(reader, point);
        }
    }

    void close() {
        outline.push_back({'Z', {}});
        at_ = start_;
        last_ = 'Z';
    }

    Outline outline;

  private:
    bool move(char kind, Point to) {
        outline.push_back({kind, {to}});
        if (kind == 'M')
            start_ = to;
        at_ = to;
        last_ = kind;
        return true;
    }

    bool curve(Point first, Point second, Point to, char kind) {
        outline.push_back({'C', {first, second, to}});
        if (kind == 'C')
            control_ = second;
        at_ = to;
        last_ = kind;
        return true;
    }

    bool quadratic(Point control, Point to) {
        control_ = control;
        const auto between = [&](Point end) {
            return Point{end.x + (control.x - end.x) * 2 / 3, end.y + (control.y - end.y) * 2 / 3};
        };
        return curve(between(at_), between(to), to, 'Q');
    }

    Point reflected(char kind) const {
        return last_ == kind ? Point{2 * at_.x - control_.x, 2 * at_.y - control_.y} : at_;
    }

    template <class PointReader>
    bool arc(PathReader& reader, const PointReader& point) {
        const auto rx = reader.number();
        const auto ry = rx ? reader.number() : std::nullopt;
        const auto rotation = ry ? reader.number() : std::nullopt;
        const auto large = rotation ? reader.flag() : std::nullopt;
        const auto sweep = large ? reader.flag() : std::nullopt;
        const auto to = sweep ? point() : std::nullopt;
        if (!to)
            return false;
        appendArc(outline, at_, *rx, *ry, *rotation, *large != 0, *sweep != 0, *to);
        at_ = *to;
        last_ = 'A';
        return true;
    }

    Point at_, start_, control_;
    char last_ = 0;
};

} // namespace

Outline parsePath(std::string_view data, bool& whole) {
    PathReader reader(data);
    PathBuilder builder;
    bool damaged = false;
    while (!damaged && builder.outline.size() < kMaximumSegments) {
        char command = reader.command();
        if (command == 0 || (builder.outline.empty() && command != 'M' && command != 'm'))
            break;
        if (command == 'Z' || command == 'z') {
            builder.close();
            continue;
        }
        damaged = !builder.step(command, reader);
        if (command == 'M' || command == 'm')
            command = command == 'M' ? 'L' : 'l'; // further pairs are lines
        std::size_t left = reader.left();
        while (!damaged && builder.outline.size() < kMaximumSegments && builder.step(command, reader))
            left = reader.left();
        damaged = damaged || reader.left() != left; // the last step has taken some of its numbers
    }
    whole = (!damaged && reader.left() == 0) || data == "none";
    return std::move(builder.outline);
}

Outline parsePolygon(std::string_view points, bool closed, bool& whole) {
    PathReader reader(points);
    Outline outline;
    bool even = true;
    while (outline.size() < kMaximumSegments) {
        const auto x = reader.number();
        const auto y = x ? reader.number() : std::nullopt;
        if (x && !y)
            even = false;
        if (!y)
            break;
        outline.push_back({outline.empty() ? 'M' : 'L', {Point{*x, *y}}});
    }
    whole = reader.left() == 0 && even;
    if (closed && !outline.empty())
        outline.push_back({'Z', {}});
    return outline;
}

Outline rectangle(const Box& box, double rx, double ry) {
    rx = std::min(rx, box.width / 2);
    ry = std::min(ry, box.height / 2);
    const double left = box.x, top = box.y, right = box.right(), bottom = box.bottom();
    if (rx <= 0 || ry <= 0)
        return {{'M', {Point{left, top}}},
                {'L', {Point{right, top}}},
                {'L', {Point{right, bottom}}},
                {'L', {Point{left, bottom}}},
                {'Z', {}}};
    const double kx = rx * (1 - kCircle), ky = ry * (1 - kCircle);
    return {{'M', {Point{left + rx, top}}},
            {'L', {Point{right - rx, top}}},
            {'C', {Point{right - kx, top}, Point{right, top + ky}, Point{right, top + ry}}},
            {'L', {Point{right, bottom - ry}}},
            {'C', {Point{right, bottom - ky}, Point{right - kx, bottom}, Point{right - rx, bottom}}},
            {'L', {Point{left + rx, bottom}}},
            {'C', {Point{left + kx, bottom}, Point{left, bottom - ky}, Point{left, bottom - ry}}},
            {'L', {Point{left, top + ry}}},
            {'C', {Point{left, top + ky}, Point{left + kx, top}, Point{left + rx, top}}},
            {'Z', {}}};
}

Outline ellipse(Point center, double rx, double ry) {
    return rectangle({center.x - rx, center.y - ry, 2 * rx, 2 * ry}, rx, ry);
}

void transform(Outline& outline, const Matrix& matrix) {
    for (Segment& segment : outline)
        for (Point& point : segment.points)
            point = matrix.apply(point);
}

} // namespace kvtdruck::druckwerk
