#include "druckwerk/page/chart_drawing.h"

#include "druckwerk/page/chart_parts.h"

#include <algorithm>
#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kMostPoints = 60;
constexpr double kLabelShare = 0.96; // of a point's width, for its label
constexpr double kLineSpacing = 1.2; // of the text size
constexpr int kMostLabelLines = 3;

/// A chart that stands on its axis: bars side by side or stacked, lines, marks.
class UprightChart : public ChartParts {
  public:
    using ChartParts::ChartParts;

    void draw() {
        if (points_ == 0)
            return;
        drawLegend([](std::size_t) { return String(); });
        layOutAxis();
        if (area_.width <= 0 || area_.height <= 0)
            return warn("Diagramm ist für seine Schriftgröße zu klein und bleibt leer");
        drawGrid();
        drawLabels();
        for (std::size_t i = 0; i < bars(); ++i)
            drawBars(i);
        surface_.strokeLine({area_.x, heightOf(0)}, {area_.right(), heightOf(0)}, 2 * kHairline, kAxisColor);
        for (std::size_t i = bars(); i < values_.size(); ++i)
            chart_.kind == Chart::Kind::Target ? drawMarks(i) : drawLine(i);
    }

  private:
    void layOutAxis() {
        const double size = chart_.size;
        const double above = size * (0.5 + (chart_.unit.empty() ? 0 : 1.4) + (chart_.values ? 1 : 0));
        area_.y += above;
        area_.height -= above - size * 0.5;
        // The labels' lines take height from the axis, whose numbers take width from the labels.
        const Box whole = area_;
        int needed = labels_.empty() ? 0 : 1;
        do {
            labelLines_ = needed;
            area_ = whole;
            fitAxis();
            needed = neededLabelLines();
        } while (needed > labelLines_);
    }

    void fitAxis() {
        const double size = chart_.size;
        area_.height -= size * (1 + kLineSpacing * labelLines_);
        scale_ = scaleFor(static_cast<int>(area_.height / (size * 3)));
        double widest = 0;
        for (int i = 0; i <= scale_.steps(); ++i)
            widest = std::max(widest, textWidth(atAxis(scale_.at(i))));
        area_.x += widest + size * 0.6;
        area_.width -= widest + size * 0.6;
    }

    double heightOf(double value) const { return area_.bottom() - scale_.share(value) * area_.height; }
    double slot() const { return area_.width / static_cast<double>(points_); }
    double middleOf(std::size_t point) const { return area_.x + slot() * (static_cast<double>(point) + 0.5); }

    void drawGrid() {
        for (int i = 0; i <= scale_.steps(); ++i) {
            const double value = scale_.at(i);
            const double y = heightOf(value);
            surface_.strokeLine({area_.x, y}, {area_.right(), y}, kHairline, kGridColor);
            text(atAxis(value), {area_.x - chart_.size * 0.6, y + chart_.size * 0.35}, Anchor::End);
        }
        if (!chart_.unit.empty())
            text(fromUtf8(chart_.unit), {chart_.box.x, area_.y - chart_.size * 1.05}, Anchor::Start);
    }

    /// How the labels are set.
    struct Labelling {
        double size;
        double room;      ///< of each
        std::size_t step; ///< one label for so many points
    };

    Labelling labelling() {
        double widest = 0;
        double widestWord = 0;
        for (const auto& label : labels_) {
            widest = std::max(widest, textWidth(label));
            for (std::size_t at = 0, end = 0; at < label.size(); at = end + 1) {
                end = std::min(label.find_first_of(u" -", at), label.size());
                widestWord = std::max(widestWord, textWidth(StringView(label).substr(at, end - at + 1)));
            }
        }
        // A smaller size keeps words whole.
        const double fitting = widestWord > 0 ? slot() * kLabelShare / widestWord : 1;
        const double size = chart_.size * std::clamp(fitting, kSmallestLabel, 1.0);
        // Where there is no room even for parts of them, labels are thinned out.
        const double room = slot() * kLabelShare;
        if (widest <= room || room >= size * 4)
            return {size, room, 1};
        const double wanted = room > 0 ? std::ceil(std::min(widest, size * 8) / room) : 1;
        const auto step = static_cast<std::size_t>(std::clamp(wanted, 1.0, static_cast<double>(points_)));
        return {size, room * static_cast<double>(step), step};
    }

    /// The lines of a label, at most `most`; the last one is cut where that is too few.
    auto labelLines(std::size_t point, const Labelling& set, int most) {
        return setter_.lines(labels_[point], face(), set.size, set.room, static_cast<std::size_t>(most));
    }

    int neededLabelLines() {
        const auto set = labelling();
        std::size_t needed = 0;
        for (std::size_t i = 0; i < labels_.size() && i < points_; i += set.step)
            needed = std::max(needed, labelLines(i, set, kMostLabelLines).size());
        return static_cast<int>(needed);
    }

    void drawLabels() {
        const auto set = labelling();
        for (std::size_t i = 0; i < labels_.size() && i < points_; i += set.step) {
            double y = area_.bottom() + set.size * 1.3;
            for (const auto& line : labelLines(i, set, labelLines_)) {
                surface_.line(line, face(), {middleOf(i), y}, set.size, chart_.textColor, Anchor::Middle);
                y += set.size * kLineSpacing;
            }
        }
    }

    void drawBars(std::size_t series) {
        const auto side = static_cast<double>(isStacked() ? 1 : bars());
        const auto place = static_cast<double>(isStacked() ? 0 : series);
        const double width = slot() * kBarShare / side;
        for (std::size_t i = 0; i < values_[series].size(); ++i) {
            const auto [from, to] = extent(series, i);
            const double left = middleOf(i) + width * (place - side / 2);
            const double begin = heightOf(from);
            const double end = heightOf(to);
            surface_.fillBox({left, std::min(begin, end), width * kBarGap, std::fabs(end - begin)},
                             chart_.series[series].color);
            if (chart_.values)
                drawNumber(series, i, {left + width * kBarGap / 2, end}, std::fabs(end - begin));
        }
    }

    /// Beyond a bar's end; within a part of a stack, where it is high enough.
    void drawNumber(std::size_t series, std::size_t point, Point end, double height) {
        const double size = chart_.size;
        const double shown = value(series, point);
        const auto side = static_cast<double>(isStacked() ? 1 : bars());
        if (!isStacked()) {
            end.y += shown < 0 ? size : -size * 0.3;
            number(numberText(shown), end, Anchor::Middle, slot() * (side > 1 ? kBarShare / side : kLabelShare),
                   chart_.textColor);
        } else if (height > size) {
            end.y += (shown < 0 ? -height : height) / 2 + size * 0.35;
            number(numberText(shown), end, Anchor::Middle, slot() * kBarShare * kBarGap,
                   readableOn(chart_.series[series].color));
        }
    }

    void drawMarks(std::size_t series) {
        const double half = slot() * 0.44;
        for (std::size_t i = 0; i < values_[series].size(); ++i) {
            const double y = heightOf(values_[series][i]);
            surface_.strokeLine({middleOf(i) - half, y}, {middleOf(i) + half, y}, 1.6, chart_.series[series].color);
        }
    }

    void drawLine(std::size_t series) {
        const auto& points = values_[series];
        const Rgb color = chart_.series[series].color;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const Point at{middleOf(i), heightOf(points[i])};
            if (i + 1 < points.size())
                surface_.strokeLine(at, {middleOf(i + 1), heightOf(points[i + 1])}, 1.2, color);
            surface_.fillBox({at.x - 1.3, at.y - 1.3, 2.6, 2.6}, color);
            if (chart_.values)
                number(numberText(points[i]), {at.x, at.y - chart_.size * 0.6}, Anchor::Middle,
                       slot() * kLabelShare, chart_.textColor);
        }
    }

    Scale scale_;
    int labelLines_ = 0;
};

} // namespace

namespace {

std::optional<std::pair<double, double>> limitsOf(const Chart& chart, const Scene& scene) {
    if (!chart.scale)
        return std::nullopt;
    return std::pair(chart.scale->first.evaluate(scene), chart.scale->second.evaluate(scene));
}

} // namespace

ChartPoints pointsOf(const Chart& chart, const Scene& scene) {
    ChartPoints points;
    points.limits = limitsOf(chart, scene);
    for (const auto& series : chart.series) {
        auto& values = points.values.emplace_back();
        for (const auto& value : series.values)
            values.push_back(value.evaluate(scene));
    }
    for (const auto& label : chart.labels)
        label.append(scene, points.labels.emplace_back());
    return points;
}

void collectPoint(const Chart& chart, const Scene& scene, ChartPoints& points, const FontLibrary::Warn& warn) {
    if (!chart.rows->holds(scene))
        return;
    points.values.resize(chart.series.size());
    points.limits = limitsOf(chart, scene);
    if (points.values[0].size() == kMostPoints)
        return warn(chart.place + ": Diagramm zeigt nur die ersten " + std::to_string(kMostPoints) + " Zeilen");
    for (std::size_t i = 0; i < chart.series.size(); ++i)
        points.values[i].push_back(chart.series[i].values[0].evaluate(scene));
    if (!chart.labels.empty())
        chart.labels[0].append(scene, points.labels.emplace_back());
}

void drawChart(const Chart& chart, ChartPoints points, const Locale& locale, double down, ChartSurface& surface,
               TextSetter& setter, const FontLibrary::Warn& warn) {
    if (chart.kind == Chart::Kind::Share || chart.kind == Chart::Kind::Horizontal)
        return drawLyingChart(chart, std::move(points), locale, down, surface, setter, warn);
    UprightChart(chart, std::move(points), locale, down, surface, setter, warn).draw();
}

} // namespace kvtdruck::druckwerk
