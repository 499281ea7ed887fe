#include "druckwerk/structure/chart_description.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kvtdruck::druckwerk {

namespace {

String kindOf(const Chart& chart) {
    switch (chart.kind) {
    case Chart::Kind::Lines:
        return u"Liniendiagramm";
    case Chart::Kind::Share:
        return u"Anteile";
    default:
        return u"Balkendiagramm";
    }
}

/// In full, as the axis does not show it.
String formatted(double value, const Locale& locale) {
    static const NumberPattern kWhole(u"#.##0");
    static const NumberPattern kParts(u"#.##0,00");
    String out;
    (value == std::trunc(value) ? kWhole : kParts)
        .append(Number::of(std::isfinite(value) ? value : 0), locale, out);
    return out;
}

String percentage(double share, const Locale& locale) {
    static const NumberPattern kPattern(u"0,0 %");
    String out;
    kPattern.append(Number::of(share), locale, out);
    return out;
}

String pointOf(const std::vector<double>& values, std::size_t point, const ChartPoints& points,
               const Locale& locale) {
    const String label = point < points.labels.size() ? points.labels[point] : String();
    const String value = formatted(values[point], locale);
    return label.empty() ? value : label.ends_with(u" " + value) ? label : label + u" " + value;
}

String extremesOf(const std::vector<double>& values, const ChartPoints& points, const Locale& locale) {
    const auto [least, most] = std::ranges::minmax_element(values);
    const auto at = [&](auto found) {
        return pointOf(values, static_cast<std::size_t>(found - values.begin()), points, locale);
    };
    return *least == *most ? (values.size() == 1 ? at(most) : u"immer " + formatted(*most, locale))
                           : u"höchster " + at(most) + u", niedrigster " + at(least);
}

double sumOf(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0,
                           [](double sum, double value) { return sum + std::max(0.0, value); });
}

String nameOf(const Chart& chart, std::size_t series) {
    const String legend = fromUtf8(chart.series[series].legend);
    return legend.empty() ? legend : legend + u": ";
}

} // namespace

String describe(const Chart& chart, const ChartPoints& points, const Locale& locale) {
    double total = 0;
    for (const auto& values : points.values)
        total += sumOf(values);
    String out;
    for (std::size_t i = 0; i < points.values.size(); ++i) {
        const auto& values = points.values[i];
        if (values.empty())
            continue;
        out += (out.empty() ? u". " : u"; ") + nameOf(chart, i);
        out += chart.kind == Chart::Kind::Share ? percentage(total > 0 ? sumOf(values) / total : 0, locale)
                                                : extremesOf(values, points, locale);
    }
    return out.empty() ? out : kindOf(chart) + out;
}

} // namespace kvtdruck::druckwerk
