// Charts whose points lie one below the other: horizontal bars and shares.
#include "druckwerk/page/chart_parts.h"

#include <algorithm>
#include <cmath>

namespace kvtdruck::druckwerk {
namespace {

constexpr double kBaseline = 0.35; // of the size, below the middle of a line of text

class LyingChart : public ChartParts {
  public:
    using ChartParts::ChartParts;

    void draw() {
        if (points_ == 0)
            return;
        const bool shares = chart_.kind == Chart::Kind::Share;
        drawLegend([&](std::size_t i) { return shares && points_ == 1 ? u" " + percentage(i, 0) : String(); });
        layOut(shares);
        if (area_.width <= 0 || area_.height <= 0)
            return warn("Diagramm ist für seine Schriftgröße zu klein und bleibt leer");
        if (!shares)
            drawGrid();
        for (std::size_t point = 0; point < points_; ++point) {
            if (point < labels_.size())
                drawLabel(point);
            shares ? drawShares(point) : drawBars(point);
        }
        if (!shares)
            surface_.strokeLine({placeOf(0), area_.y}, {placeOf(0), area_.bottom()}, 2 * kHairline, kAxisColor);
    }

  private:
    double slot() const { return area_.height / static_cast<double>(points_); }
    double top(std::size_t point) const { return area_.y + slot() * static_cast<double>(point); }
    double placeOf(double value) const { return area_.x + scale_.share(value) * area_.width; }

    void layOut(bool shares) {
        const double size = chart_.size;
        double widest = 0;
        for (const auto& label : labels_)
            widest = std::max(widest, textWidth(label) + size);
        left_ = area_.x;
        const double taken = std::min(widest, area_.width / 3);
        area_.x += taken;
        area_.width -= taken;
        if (shares)
            return;
        area_.height -= size * (chart_.unit.empty() ? 1.6 : 2.8);
        scale_ = scaleFor(static_cast<int>(area_.width / (size * 8)));
        const double beyond = textWidth(atAxis(scale_.high)) / 2; // half of the last number stands beyond the axis
        area_.width -= beyond;
        if (taken == 0) {
            area_.x += beyond;
            area_.width -= beyond;
        }
    }

    void drawGrid() {
        const double size = chart_.size;
        for (int i = 0; i <= scale_.steps(); ++i) {
            const double x = placeOf(scale_.at(i));
            surface_.strokeLine({x, area_.y}, {x, area_.bottom()}, kHairline, kGridColor);
            text(atAxis(scale_.at(i)), {x, area_.bottom() + size * 1.3}, Anchor::Middle);
        }
        if (!chart_.unit.empty())
            text(fromUtf8(chart_.unit), {area_.right(), area_.bottom() + size * 2.5}, Anchor::End);
    }

    void drawLabel(std::size_t point) {
        const double room = area_.x - left_ - chart_.size * 0.5;
        text(setter_.cut(labels_[point], face(), chart_.size, room),
             {left_, top(point) + slot() / 2 + chart_.size * kBaseline}, Anchor::Start);
    }

    void drawBars(std::size_t point) {
        const double height = slot() * kBarShare / static_cast<double>(values_.size());
        double y = top(point) + slot() * (1 - kBarShare) / 2;
        for (std::size_t series = 0; series < values_.size(); ++series, y += height) {
            const double shown = value(series, point);
            const double zero = placeOf(0);
            const double end = placeOf(shown);
            surface_.fillBox({std::min(zero, end), y, std::fabs(end - zero), height * kBarGap},
                             chart_.series[series].color);
            if (chart_.values)
                drawNumber(shown, end, y + height / 2, chart_.series[series].color);
        }
    }

    /// Behind the bar's end, or within the bar where there is no room behind it.
    void drawNumber(double shown, double end, double middle, Rgb bar) {
        const double size = chart_.size;
        const String text = numberText(shown);
        const bool leftwards = shown < 0;
        const double behind = leftwards ? end - area_.x : area_.right() - end;
        const bool within = behind < textWidth(text) + size * 0.3;
        const double side = leftwards == within ? 1 : -1; // to the right of the end, or to its left
        const double room = within ? std::fabs(end - placeOf(0)) : behind;
        number(text, {end + side * size * 0.3, middle + size * kBaseline}, side > 0 ? Anchor::Start : Anchor::End,
               room, within ? readableOn(bar) : chart_.textColor);
    }

    double shareOf(std::size_t series, std::size_t point) const {
        double sum = 0;
        for (std::size_t i = 0; i < values_.size(); ++i)
            sum += std::max(0.0, value(i, point));
        return sum > 0 ? std::max(0.0, value(series, point)) / sum : 0;
    }

    String percentage(std::size_t series, std::size_t point) const {
        static const NumberPattern kPattern(u"0,0 %");
        return formatted(shareOf(series, point), kPattern);
    }

    void drawShares(std::size_t point) {
        double x = area_.x;
        for (std::size_t series = 0; series < values_.size(); ++series) {
            const Rgb color = chart_.series[series].color;
            const double width = shareOf(series, point) * area_.width;
            surface_.fillBox({x, top(point) + slot() * 0.1, width, slot() * 0.8}, color);
            if (chart_.values && width > 0)
                number(percentage(series, point),
                       {x + width / 2, top(point) + slot() / 2 + chart_.size * kBaseline}, Anchor::Middle, width,
                       readableOn(color));
            x += width;
        }
    }

    double left_ = 0;
    Scale scale_;
};

} // namespace

void drawLyingChart(const Chart& chart, ChartPoints points, const Locale& locale, double down,
                    ChartSurface& surface, TextSetter& setter, const FontLibrary::Warn& warn) {
    LyingChart(chart, std::move(points), locale, down, surface, setter, warn).draw();
}

} // namespace kvtdruck::druckwerk
