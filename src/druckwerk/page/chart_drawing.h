// Charts: bars, lines, target marks and shares, with axis, labels and legend.
#pragma once

#include "druckwerk/layout/layout.h"
#include "druckwerk/page/text_setter.h"

namespace kvtdruck::druckwerk {

/// What a chart shows.
struct ChartPoints {
    std::vector<std::vector<double>> values; ///< of each series
    std::vector<String> labels;
};

/// The points of a chart that has them in its series.
ChartPoints pointsOf(const Chart& chart, const Scene& scene);
/// Takes the line that is being printed as a point of a chart of lines.
void collectPoint(const Chart& chart, const Scene& scene, ChartPoints& points, const FontLibrary::Warn& warn);
/// Draws the chart, moved down by `down`.
void drawChart(const Chart& chart, ChartPoints points, const Locale& locale, double down, Canvas& canvas,
               TextSetter& setter, const FontLibrary::Warn& warn);

} // namespace kvtdruck::druckwerk
