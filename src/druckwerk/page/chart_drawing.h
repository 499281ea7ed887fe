// Charts: bars, lines, target marks and shares, with axis, labels and legend.
#pragma once

#include "druckwerk/layout/layout.h"
#include "druckwerk/page/text_setter.h"

namespace kvtdruck::druckwerk {

/// Takes the line that is being printed as a point of the chart.
void collectPoint(Chart& chart, const Scene& scene, const String& printDate, const FontLibrary::Warn& warn);
/// Forgets the points that lines have given.
void forgetPoints(Chart& chart);
/// Draws the chart, moved down by `down`.
void drawChart(const Chart& chart, const Scene& scene, const String& printDate, double down, Canvas& canvas,
               TextSetter& setter);

} // namespace kvtdruck::druckwerk
