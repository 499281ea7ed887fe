#include "druckwerk/page/chart_parts.h"

#include <algorithm>
#include <cmath>

namespace kvtdruck::druckwerk {
namespace {

/// An even step for `length` that is cut into about `wanted` parts.
double evenStep(double length, int wanted) {
    const double rough = length / std::max(1, wanted);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = 10 * power;
    for (const double factor : {5.0, 2.5, 2.0, 1.0})
        if (factor * power >= rough)
            step = factor * power;
    return step;
}

} // namespace

int Scale::steps() const {
    constexpr double kAlmost = 1e-9;
    return static_cast<int>(std::floor((high - low) / step + kAlmost));
}

double Scale::share(double value) const {
    return std::clamp((value - low) / (high - low), 0.0, 1.0);
}

Scale Scale::over(double least, double most, int wanted) {
    least = std::min(least, 0.0);
    most = std::max(most, 0.0);
    if (!(most - least > 0) || !std::isfinite(most - least))
        return {};
    const double step = evenStep(most - least, wanted);
    return {std::floor(least / step) * step, std::ceil(most / step) * step, step};
}

Scale Scale::between(double low, double high, int wanted) {
    return {low, high, evenStep(high - low, wanted)};
}

ChartParts::ChartParts(const Chart& chart, ChartPoints points, const Locale& locale, double down,
                       ChartSurface& surface, TextSetter& setter, const FontLibrary::Warn& warn)
    : chart_(chart), locale_(locale), surface_(surface), setter_(setter), warn_(warn), area_(chart.box),
      values_(std::move(points.values)), labels_(std::move(points.labels)), limits_(points.limits) {
    area_.y += down;
    for (auto& series : values_) {
        for (double& value : series)
            value = std::isfinite(value) ? value : 0;
        points_ = std::max(points_, series.size());
    }
}

String ChartParts::formatted(double value, const NumberPattern& pattern) const {
    String out;
    pattern.append(Number::of(value), locale_, out);
    return out;
}

void ChartParts::placeLegend(const std::vector<String>& names) {
    const double size = chart_.size;
    double x = area_.x;
    double y = area_.y;
    bool any = false;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].empty())
            continue;
        const double width = size * 1.4 + textWidth(names[i]) + size * 1.6;
        if (any && x + width > area_.right() + size) {
            x = area_.x;
            y += size * 1.5;
        }
        any = true;
        surface_.fillBox({x, y + size * 0.2, size * 0.8, size * 0.8}, chart_.series[i].color);
        text(names[i], {x + size * 1.2, y + size * 0.9}, Anchor::Start);
        x += width;
    }
    if (any) {
        const double used = y + size * 2 - area_.y;
        area_.y += used;
        area_.height -= used;
    }
}

std::size_t ChartParts::bars() const {
    switch (chart_.kind) {
    case Chart::Kind::Lines:
        return 0;
    case Chart::Kind::Target:
        return values_.size() - (values_.size() > 1 ? 1 : 0);
    default:
        return values_.size() - chart_.lines;
    }
}

double ChartParts::value(std::size_t series, std::size_t point) const {
    return point < values_[series].size() ? values_[series][point] : 0;
}

std::pair<double, double> ChartParts::extent(std::size_t series, std::size_t point) const {
    const double own = value(series, point);
    double below = 0;
    for (std::size_t i = 0; isStacked() && i < series; ++i)
        if (const double other = value(i, point); (other < 0) == (own < 0))
            below += other;
    return {below, below + own};
}

Scale ChartParts::scaleFor(int wantedSteps) const {
    double least = 0;
    double most = 0;
    for (std::size_t series = 0; series < values_.size(); ++series)
        for (std::size_t point = 0; point < values_[series].size(); ++point) {
            const double end = series < bars() ? extent(series, point).second : value(series, point);
            least = std::min(least, end);
            most = std::max(most, end);
        }
    if (!limits_)
        return Scale::over(least, most, wantedSteps);
    const auto [low, high] = *limits_;
    if (!(low < high) || !std::isfinite(high - low)) {
        warn("data-scale ist hier kein Bereich (" + toUtf8(atAxis(low)) + " bis " + toUtf8(atAxis(high)) + ")");
        return Scale::over(least, most, wantedSteps);
    }
    if (least < low || most > high)
        warn("Werte von " + toUtf8(atAxis(least)) + " bis " + toUtf8(atAxis(most)) +
             " liegen nicht alle in data-scale; was darüber hinausgeht, ist abgeschnitten");
    return Scale::between(low, high, wantedSteps);
}

void ChartParts::number(StringView text, Point at, Anchor anchor, double room, Rgb color) {
    const double width = textWidth(text);
    const double share = width > room ? std::max(kSmallestLabel, room / width) : 1;
    if (width * share > room)
        return warn("für Zahlen (data-values) ist zu wenig Platz; sie fehlen zum Teil");
    surface_.line(text, face(), at, chart_.size * share, color, anchor);
}

Rgb ChartParts::readableOn(Rgb ground) const {
    // https://www.w3.org/TR/AERT/#color-contrast: the brightness of a colour
    const double brightness = (ground.red * 299 + ground.green * 587 + ground.blue * 114) / 1000.0;
    return brightness < 125 ? Rgb{0xff, 0xff, 0xff} : chart_.textColor;
}

} // namespace kvtdruck::druckwerk
