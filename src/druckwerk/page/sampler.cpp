#include "druckwerk/page/sampler.h"

#include "druckwerk/layout/sample_marks.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kvtdruck::druckwerk {
namespace {

/// With as many digits as paper shows, `space` behind it.
std::string number(double value, const char* space = "") {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.7g%s", std::round(value * 1000) / 1000, space);
    return text.data();
}

std::string colorOf(Rgb color) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x", color.red, color.green, color.blue);
    return text.data();
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text)
        out += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
    return out;
}

/// The map that undoes `map`, as an attribute of SVG.
std::string inverse(const Matrix& map) {
    const double area = map.a * map.d - map.b * map.c;
    const Matrix back{map.d / area, 0 - map.b / area, 0 - map.c / area, map.a / area, 0, 0};
    const Point origin = back.apply({-map.e, -map.f});
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(), "matrix(%.9g,%.9g,%.9g,%.9g,%.9g,%.9g)", back.a, back.b, back.c, back.d,
                  origin.x, origin.y);
    return text.data();
}

/// A drawing as elements of SVG, in points on the page. Styles are the elements' own: a layout's style sheet would
/// go before attributes.
class SvgSurface final : public ChartSurface {
  public:
    SvgSurface(const Matrix& matrix, const FontRequest& font) {
        std::string families;
        for (const auto& family : font.families)
            families += (families.empty() ? "'" : ",'") + family + "'";
        svg_ = "<g xmlns=\"http://www.w3.org/2000/svg\" class=\"" + std::string(kSampleClass) + "\" transform=\"" +
               inverse(matrix) + "\">\n";
        font_ = "font-family:" + families + ";font-weight:" + std::to_string(font.weight) +
                (font.italic ? ";font-style:italic" : "") + ";font-size:";
    }

    std::string svg() const { return svg_ + "</g>"; }

    void fillBox(const Box& box, Rgb color) override {
        svg_ += "<path d=\"M" + number(box.x, " ") + number(box.y) + "h" + number(box.width) + "v" +
                number(box.height) + "h" + number(-box.width) + "z\" style=\"fill:" + colorOf(color) +
                ";stroke:none\"/>\n";
    }
    void strokeLine(Point from, Point to, double width, Rgb color) override {
        svg_ += "<path d=\"M" + number(from.x, " ") + number(from.y) + "L" + number(to.x, " ") + number(to.y) +
                "\" style=\"fill:none;stroke:" + colorOf(color) + ";stroke-width:" + number(width) + "\"/>\n";
    }
    void line(StringView text, Face&, Point at, double size, Rgb color, Anchor anchor) override {
        static constexpr std::array<const char*, 3> kAnchors = {"start", "middle", "end"};
        svg_ += "<text x=\"" + number(at.x) + "\" y=\"" + number(at.y) + "\" style=\"" + font_ + number(size) +
                "px;fill:" + colorOf(color) + ";text-anchor:" + kAnchors[static_cast<std::size_t>(anchor)] + "\">" +
                escaped(toUtf8(text)) + "</text>\n";
    }

  private:
    std::string svg_;
    std::string font_;
};

} // namespace

void Sampler::take(const Band& band, const Scene& scene, std::optional<bool> late) {
    for (const Item& item : band.items)
        if ((!late || item.late == *late) && !taken_.contains(&item))
            takeItem(item, scene);
}

void Sampler::takeItem(const Item& item, const Scene& scene) {
    bool shown = true;
    for (const auto& condition : item.conditions) {
        const bool holds = condition->holds(scene);
        sample_.conditions.try_emplace(condition->element, holds);
        shown = shown && holds;
    }
    if (!shown)
        return;
    taken_.insert(&item);
    if (const auto* text = std::get_if<TextItem>(&item.content); text != nullptr && !text->text.isConstant())
        takeText(*text, scene);
    else if (const auto* chart = std::get_if<std::unique_ptr<Chart>>(&item.content))
        sample_.charts[(*chart)->element] = drawingOf(**chart, scene);
}

void Sampler::takeText(const TextItem& item, const Scene& scene) {
    String text;
    item.text.append(scene, text);
    const auto shown = setter_.shown(item, text);
    LayoutSample::Text& sample = sample_.texts[item.element];
    sample = {item.written, {}, shown.share, item.fromBottom};
    for (const String& line : shown.lines)
        sample.lines.push_back(toUtf8(line));
    if (text.empty() || sample.lines.empty())
        sample.lines = {"\u00a0"}; // keeps the place and the style of a text that shows nothing
}

std::string Sampler::drawingOf(const Chart& chart, const Scene& scene) {
    SvgSurface surface(chart.matrix, layout_.fonts[chart.font].request);
    drawChart(chart, chart.rows ? points_[chart.rowChart] : pointsOf(chart, scene), scene.definitions.locale(), 0,
              surface, setter_, [](const std::string&) {});
    return surface.svg();
}

const LayoutSample& Sampler::finish(const Scene& scene, int pages) {
    for (const auto* band : {&layout_.columnHead, &layout_.row, &layout_.carriedIn, &layout_.carriedOut,
                             &layout_.sum, &layout_.footer})
        if (*band)
            take(**band, scene);
    for (const Group& group : layout_.groups)
        for (const auto* band : {&group.head, &group.foot})
            if (*band)
                take(**band, scene);
    const std::string mark = toUtf8(String(1, kPageCountMark));
    for (auto& [element, text] : sample_.texts)
        for (std::string& line : text.lines)
            for (std::size_t at = 0; (at = line.find(mark, at)) != std::string::npos;)
                line.replace(at, mark.size(), std::to_string(pages));
    return sample_;
}

} // namespace kvtdruck::druckwerk
