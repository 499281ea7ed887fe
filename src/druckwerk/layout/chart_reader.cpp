// Charts: their kind, points, labels and colours.
#include "druckwerk/layout/band_builder.h"
#include "druckwerk/svg/color.h"

#include <array>
#include <map>

namespace kvtdruck::druckwerk {

namespace {

std::vector<std::string> listOf(const xmlNode* node, const char* name, const char* separators = ";") {
    std::vector<std::string> parts;
    const std::string text = attribute(node, name);
    for (const auto word : splitWords(text, separators))
        if (const auto part = trimmedAscii(word); !part.empty())
            parts.emplace_back(part);
    return parts;
}

/// "A, B, =C-D, E_01..12": the names and expressions of a series, ranges written out.
std::vector<std::string> pointsOf(const std::string& series) {
    std::vector<std::string> points;
    for (const auto part : splitWords(series, ",")) {
        const std::string point(trimmedAscii(part));
        const auto dots = point.find("..");
        const auto digits = dots == std::string::npos ? dots : point.find_last_not_of("0123456789", dots - 1) + 1;
        if (dots == std::string::npos || digits >= dots) {
            points.push_back(!point.empty() && point[0] == '=' ? point.substr(1) : point);
            continue;
        }
        const std::size_t width = dots - digits;
        const auto from = parseLength(point.substr(digits, width));
        const auto to = parseLength(point.substr(dots + 2));
        if (!from || !to || *to < *from || *to - *from > 366)
            invalid("Ungültiger Bereich „" + point + "“");
        for (int i = static_cast<int>(*from); i <= static_cast<int>(*to); ++i) {
            std::string number = std::to_string(i);
            number.insert(0, width > number.size() ? width - number.size() : 0, '0');
            points.push_back(point.substr(0, digits) + number);
        }
    }
    return points;
}

/// A colour, or that of a class of the style sheet.
Rgb colorOf(BandBuilder& band, const std::string& text) {
    if (const auto color = parseColor(text))
        return color->rgb;
    Style style;
    style.fill.kind = Paint::Kind::None;
    band.reading().sheet.apply(style, "", text, "");
    if (style.fill.kind != Paint::Kind::Color)
        invalid("Ungültige Farbe „" + text + "“");
    return style.fill.color;
}

void readSeries(BandBuilder& band, const xmlNode* node, const Context& context, Chart& chart) {
    static constexpr std::array<Rgb, 6> kColors = {{{0x1b, 0x3a, 0x5c},
                                                    {0x9d, 0xb8, 0xd2},
                                                    {0xd9, 0x82, 0x2b},
                                                    {0x5b, 0x8c, 0x5a},
                                                    {0x8a, 0x5a, 0x83},
                                                    {0x8c, 0x8c, 0x8c}}};
    const auto legends = listOf(node, "data-legend");
    const auto colors = listOf(node, "data-colors");
    for (const auto& text : listOf(node, "data-series")) {
        Chart::Series series;
        for (const auto& value : pointsOf(text)) {
            series.values.emplace_back(fromUtf8(value), band.definitions(),
                                       chart.rows ? nullptr : &band.aggregates(), band.target().scope);
            band.note(series.values.back(), node, context.always());
        }
        const std::size_t i = chart.series.size();
        series.legend = i < legends.size() ? legends[i] : "";
        series.color = kColors[i % kColors.size()];
        if (i < colors.size())
            series.color = colorOf(band, colors[i]);
        if (series.values.empty() || (chart.rows && series.values.size() != 1))
            invalid("Reihe „" + text + "“ braucht " +
                    (chart.rows ? "genau einen Namen" : "mindestens einen Namen"));
        chart.series.push_back(std::move(series));
    }
    if (chart.series.empty())
        invalid("data-series fehlt");
}

Chart::Kind kindOf(const xmlNode* node) {
    static const std::map<std::string, Chart::Kind> kKinds = {
        {"bars", Chart::Kind::Bars},   {"stacked", Chart::Kind::Stacked}, {"horizontal", Chart::Kind::Horizontal},
        {"lines", Chart::Kind::Lines}, {"target", Chart::Kind::Target},   {"share", Chart::Kind::Share}};
    const auto kind = kKinds.find(attribute(node, "data-chart"));
    if (kind == kKinds.end())
        invalid("data-chart fehlt oder ist keines von bars, stacked, horizontal, lines, target, share");
    return kind->second;
}

/// Which of the series are lines over the bars.
void readLines(const xmlNode* node, Chart& chart) {
    const std::string lines = attribute(node, "data-lines");
    if (lines.empty() || lines == "0")
        return;
    if (chart.kind != Chart::Kind::Bars && chart.kind != Chart::Kind::Stacked)
        invalid("data-lines geht nur mit data-chart=\"bars\" und \"stacked\"");
    const auto count = parseLength(lines);
    if (!count || *count < 1 || *count >= static_cast<double>(chart.series.size()) ||
        *count != static_cast<int>(*count))
        invalid("data-lines=\"" + lines + "\" ist keine Zahl von Reihen, über der noch ein Balken bleibt");
    chart.lines = static_cast<std::size_t>(*count);
}

void readAxis(BandBuilder& band, const xmlNode* node, const Context& context, Chart& chart) {
    if (const std::string format = attribute(node, "data-format"); !format.empty())
        chart.format = NumberPattern(fromUtf8(format));
    if (const std::string values = attribute(node, "data-values"); !values.empty() && values != "0")
        chart.values = values == "1" ? chart.format : NumberPattern(fromUtf8(values));
    chart.unit = attribute(node, "data-unit");
    const auto scale = listOf(node, "data-scale");
    if (chart.kind == Chart::Kind::Share && (!chart.unit.empty() || !scale.empty()))
        invalid("data-unit und data-scale gehen nicht mit data-chart=\"share\", das keine Achse hat");
    if (scale.empty())
        return;
    if (scale.size() != 2)
        invalid("data-scale braucht zwei Werte, „von; bis“");
    const auto end = [&](const std::string& text) {
        Expression expression(fromUtf8(text), band.definitions(), chart.rows ? nullptr : &band.aggregates(),
                              band.target().scope);
        band.note(expression, node, context.always());
        return expression;
    };
    chart.scale.emplace(end(scale[0]), end(scale[1]));
}

} // namespace

void readChart(BandBuilder& band, xmlNode* node, const Context& context) {
    const auto kind = kindOf(node);
    FieldParts parts;
    findParts(band, node, context, parts);
    if (parts.rect == nullptr)
        invalid("Diagramm ohne Rechteck");
    auto chart = std::make_unique<Chart>();
    chart->kind = kind;
    chart->box = boxOf(parts.rect, parts.rectContext.matrix, "Rechteck des Diagramms");
    chart->place = band.placeOf(node);
    chart->font = band.reading().layout.fontNumber(context.style.font, chart->place);
    chart->size = context.style.fontSize * context.matrix.scale();
    if (chart->size < 0.5 || chart->size > 200)
        invalid("Schriftgröße des Diagramms ist ungültig");
    chart->textColor = context.style.fill.color;
    chart->scope = band.target().scope;
    chart->line = static_cast<int>(lineOf(node));
    chart->element = numberOf(node);
    chart->matrix = context.matrix;
    if (const std::string rows = attribute(node, "data-rows"); !rows.empty() && rows != "0") {
        if (!band.target().rowsClose)
            invalid("data-rows geht nur in Summe und Gruppenfuß");
        chart->rows.emplace(fromUtf8(rows), band.definitions(), nullptr, band.target().scope);
        band.note(*chart->rows, node);
    }
    readSeries(band, node, context, *chart);
    readLines(node, *chart);
    readAxis(band, node, context, *chart);
    for (const auto& label : listOf(node, "data-labels")) {
        chart->labels.emplace_back(fromUtf8(label), band.definitions(), band.aggregates(), band.target().scope);
        band.note(chart->labels.back(), node, context.always());
    }
    if (chart->rows && chart->labels.size() > 1)
        invalid("data-labels braucht mit data-rows genau eine Beschriftung");
    if (chart->rows) {
        auto& rowCharts = band.reading().layout.rowCharts;
        chart->rowChart = rowCharts.size();
        rowCharts.push_back(chart.get());
    }
    band.add(std::move(chart), context);
}

} // namespace kvtdruck::druckwerk
