#include "druckwerk/page/chart_drawing.h"

#include <algorithm>
#include <cmath>

namespace kvtdruck::druckwerk {

namespace {

constexpr std::size_t kMostPoints = 60;
constexpr Rgb kGridColor{0xd9, 0xdf, 0xe5};
constexpr Rgb kAxisColor{0x8a, 0x94, 0x9e};
constexpr double kHairline = 0.3;
constexpr double kBarShare = 0.72;   // of a point's width, for all its bars
constexpr double kLabelShare = 0.96; // of a point's width, for its label
constexpr double kLineSpacing = 1.2; // of the text size
constexpr double kSmallestLabel = 0.7;
constexpr int kMostLabelLines = 3;

/// The axis of values: from `low` to `high` in even steps.
struct Scale {
    double low = 0, high = 1, step = 1;
    int steps() const { return static_cast<int>(std::lround((high - low) / step)); }
    double at(int i) const { return low + i * step; }

    /// A scale that holds all values and zero, with about `wanted` steps of 1, 2, 2.5 or 5 times a power of ten.
    static Scale over(double least, double most, int wanted) {
        least = std::min(least, 0.0);
        most = std::max(most, 0.0);
        if (!(most - least > 0) || !std::isfinite(most - least))
            return {};
        const double rough = (most - least) / std::max(1, wanted);
        const double power = std::pow(10.0, std::floor(std::log10(rough)));
        double step = 10 * power;
        for (const double factor : {5.0, 2.5, 2.0, 1.0})
            if (factor * power >= rough)
                step = factor * power;
        return {std::floor(least / step) * step, std::ceil(most / step) * step, step};
    }
};

/// One chart while it is drawn.
class Drawing {
  public:
    Drawing(const Chart& chart, ChartPoints points, const Locale& locale, double down, ChartSurface& surface,
            TextSetter& setter, const FontLibrary::Warn& warn)
        : chart_(chart), locale_(locale), surface_(surface), setter_(setter), warn_(warn), area_(chart.box),
          values_(std::move(points.values)), labels_(std::move(points.labels)) {
        area_.y += down;
        for (auto& series : values_) {
            for (double& value : series)
                value = std::isfinite(value) ? value : 0;
            points_ = std::max(points_, series.size());
        }
    }

    void draw() {
        if (points_ == 0)
            return;
        drawLegend();
        if (chart_.kind == Chart::Kind::Share)
            return drawShares();
        layOutAxis();
        if (area_.width <= 0 || area_.height <= 0)
            return warn_(chart_.place + ": Diagramm ist für seine Schriftgröße zu klein und bleibt leer");
        drawGrid();
        drawLabels();
        const bool lines = chart_.kind == Chart::Kind::Lines;
        const bool target = chart_.kind == Chart::Kind::Target && values_.size() > 1;
        const std::size_t bars = lines ? 0 : values_.size() - (target ? 1 : 0);
        for (std::size_t i = 0; i < bars; ++i)
            drawBars(i, bars);
        surface_.strokeLine({area_.x, heightOf(0)}, {area_.right(), heightOf(0)}, 2 * kHairline, kAxisColor);
        for (std::size_t i = bars; i < values_.size(); ++i)
            lines ? drawLine(i) : drawMarks(i);
    }

  private:
    Face& face() { return setter_.face(chart_.font); }
    double textWidth(StringView text) { return setter_.width(text, face(), chart_.size); }

    void text(StringView text, Point at, Anchor anchor) {
        surface_.line(text, face(), at, chart_.size, chart_.textColor, anchor);
    }

    String formatted(double value) const {
        String out;
        chart_.format.append(Number::of(value), locale_, out);
        return out;
    }

    /// Swatches and names along the upper edge; shares show their percentage there.
    void drawLegend() {
        const double size = chart_.size;
        double x = area_.x;
        double y = area_.y;
        bool any = false;
        for (std::size_t i = 0; i < chart_.series.size(); ++i) {
            if (chart_.series[i].legend.empty())
                continue;
            String name = fromUtf8(chart_.series[i].legend);
            if (chart_.kind == Chart::Kind::Share && points_ == 1)
                name += u" " + percentage(i, 0);
            const double width = size * 1.4 + textWidth(name) + size * 1.6;
            if (any && x + width > area_.right() + size) {
                x = area_.x;
                y += size * 1.5;
            }
            any = true;
            surface_.fillBox({x, y + size * 0.2, size * 0.8, size * 0.8}, chart_.series[i].color);
            text(name, {x + size * 1.2, y + size * 0.9}, Anchor::Start);
            x += width;
        }
        if (any) {
            const double used = y + size * 2 - area_.y;
            area_.y += used;
            area_.height -= used;
        }
    }

    void layOutAxis() {
        double least = 0;
        double most = 0;
        for (const auto& points : values_)
            for (const double value : points) {
                least = std::min(least, value);
                most = std::max(most, value);
            }
        const double size = chart_.size;
        area_.y += size * 0.5;
        // The labels' lines take height from the axis, whose numbers take width from the labels.
        const Box whole = area_;
        int needed = labels_.empty() ? 0 : 1;
        do {
            labelLines_ = needed;
            area_ = whole;
            fitAxis(least, most);
            needed = neededLabelLines();
        } while (needed > labelLines_);
    }

    void fitAxis(double least, double most) {
        const double size = chart_.size;
        area_.height -= size * (1 + kLineSpacing * labelLines_);
        scale_ = Scale::over(least, most, static_cast<int>(area_.height / (size * 3)));
        double widest = 0;
        for (int i = 0; i <= scale_.steps(); ++i)
            widest = std::max(widest, textWidth(formatted(scale_.at(i))));
        area_.x += widest + size * 0.6;
        area_.width -= widest + size * 0.6;
    }

    double heightOf(double value) const {
        return area_.bottom() - (value - scale_.low) / (scale_.high - scale_.low) * area_.height;
    }
    double slot() const { return area_.width / static_cast<double>(points_); }
    double middleOf(std::size_t point) const { return area_.x + slot() * (static_cast<double>(point) + 0.5); }

    void drawGrid() {
        for (int i = 0; i <= scale_.steps(); ++i) {
            const double value = scale_.at(i);
            const double y = heightOf(value);
            surface_.strokeLine({area_.x, y}, {area_.right(), y}, kHairline, kGridColor);
            text(formatted(value), {area_.x - chart_.size * 0.6, y + chart_.size * 0.35}, Anchor::End);
        }
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

    void drawBars(std::size_t series, std::size_t bars) {
        const double width = slot() * kBarShare / static_cast<double>(bars);
        for (std::size_t i = 0; i < values_[series].size(); ++i) {
            const double left = middleOf(i) + width * (static_cast<double>(series) - static_cast<double>(bars) / 2);
            const double zero = heightOf(0);
            const double end = heightOf(values_[series][i]);
            surface_.fillBox({left, std::min(zero, end), width * 0.94, std::fabs(end - zero)},
                             chart_.series[series].color);
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
        }
    }

    double shareOf(std::size_t series, std::size_t point) const {
        double sum = 0;
        for (const auto& points : values_)
            sum += point < points.size() ? std::max(0.0, points[point]) : 0;
        const auto& points = values_[series];
        return sum > 0 && point < points.size() ? std::max(0.0, points[point]) / sum : 0;
    }

    String percentage(std::size_t series, std::size_t point) const {
        static const NumberPattern kPattern(u"0,0 %");
        String out;
        kPattern.append(Number::of(shareOf(series, point)), locale_, out);
        return out;
    }

    void drawShares() {
        double widest = 0;
        for (const auto& label : labels_)
            widest = std::max(widest, textWidth(label) + chart_.size);
        const double left = area_.x + std::min(widest, area_.width / 3);
        const double height = area_.height / static_cast<double>(points_);
        for (std::size_t point = 0; point < points_; ++point) {
            const double top = area_.y + height * static_cast<double>(point);
            if (point < labels_.size())
                text(setter_.cut(labels_[point], face(), chart_.size, left - area_.x - chart_.size * 0.5),
                     {area_.x, top + height / 2 + chart_.size * 0.35}, Anchor::Start);
            double x = left;
            for (std::size_t series = 0; series < values_.size(); ++series) {
                const double width = shareOf(series, point) * (area_.right() - left);
                surface_.fillBox({x, top + height * 0.1, width, height * 0.8}, chart_.series[series].color);
                x += width;
            }
        }
    }

    const Chart& chart_;
    const Locale& locale_;
    ChartSurface& surface_;
    TextSetter& setter_;
    const FontLibrary::Warn& warn_;
    Box area_;
    Scale scale_;
    std::vector<std::vector<double>> values_;
    std::vector<String> labels_;
    std::size_t points_ = 0;
    int labelLines_ = 0;
};

} // namespace

ChartPoints pointsOf(const Chart& chart, const Scene& scene) {
    ChartPoints points;
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
    if (points.values[0].size() == kMostPoints)
        return warn(chart.place + ": Diagramm zeigt nur die ersten " + std::to_string(kMostPoints) + " Zeilen");
    for (std::size_t i = 0; i < chart.series.size(); ++i)
        points.values[i].push_back(chart.series[i].values[0].evaluate(scene));
    if (!chart.labels.empty())
        chart.labels[0].append(scene, points.labels.emplace_back());
}

void drawChart(const Chart& chart, ChartPoints points, const Locale& locale, double down, ChartSurface& surface,
               TextSetter& setter, const FontLibrary::Warn& warn) {
    Drawing(chart, std::move(points), locale, down, surface, setter, warn).draw();
}

} // namespace kvtdruck::druckwerk
