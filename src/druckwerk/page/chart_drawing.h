// Charts: bars, lines, target marks and shares, with axis, labels and legend.
#pragma once

#include "druckwerk/layout/layout.h"
#include "druckwerk/page/text_setter.h"

namespace kvtdruck::druckwerk {

/// What a chart shows.
struct ChartPoints {
    std::vector<std::vector<double>> values; ///< of each series
    std::vector<String> labels;
    std::optional<std::pair<double, double>> limits; ///< of the axis, where the layout sets them
};

/// What a chart is drawn on.
class ChartSurface {
  public:
    ChartSurface() = default;
    ChartSurface(const ChartSurface&) = delete;
    ChartSurface& operator=(const ChartSurface&) = delete;
    virtual ~ChartSurface() = default;
    virtual void fillBox(const Box& box, Rgb color) = 0;
    virtual void strokeLine(Point from, Point to, double width, Rgb color) = 0;
    virtual void line(StringView text, Face& face, Point at, double size, Rgb color, Anchor anchor) = 0;
};

/// The page in hand.
class PageSurface final : public ChartSurface {
  public:
    PageSurface(Canvas& canvas, TextSetter& setter) : canvas_(canvas), setter_(setter) {}
    void fillBox(const Box& box, Rgb color) override { canvas_.fillBox(box, color); }
    void strokeLine(Point from, Point to, double width, Rgb color) override {
        canvas_.strokeLine(from, to, width, color);
    }
    void line(StringView text, Face& face, Point at, double size, Rgb color, Anchor anchor) override {
        setter_.line(text, face, at, size, color, anchor);
    }

  private:
    Canvas& canvas_;
    TextSetter& setter_;
};

/// The points of a chart that has them in its series.
ChartPoints pointsOf(const Chart& chart, const Scene& scene);
/// Takes the line that is being printed as a point of a chart of lines.
void collectPoint(const Chart& chart, const Scene& scene, ChartPoints& points, const FontLibrary::Warn& warn);
/// Draws the chart, moved down by `down`.
void drawChart(const Chart& chart, ChartPoints points, const Locale& locale, double down, ChartSurface& surface,
               TextSetter& setter, const FontLibrary::Warn& warn);

} // namespace kvtdruck::druckwerk
