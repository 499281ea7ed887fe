// What a chart shows, in words.
#pragma once

#include "druckwerk/page/chart_drawing.h"

namespace kvtdruck::druckwerk {

/// Its kind and, for each series, the highest and the lowest value, or each share; German. Empty where it shows
/// nothing.
String describe(const Chart& chart, const ChartPoints& points, const Locale& locale);

} // namespace kvtdruck::druckwerk
