// What charts of all kinds are made of: the axis of values, the legend, numbers beside what shows them.
#pragma once

#include "druckwerk/page/chart_drawing.h"

#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

inline constexpr Rgb kGridColor{0xd9, 0xdf, 0xe5};
inline constexpr Rgb kAxisColor{0x8a, 0x94, 0x9e};
inline constexpr double kHairline = 0.3;
inline constexpr double kBarShare = 0.72;     // of a point's room, for all its bars
inline constexpr double kBarGap = 0.94;       // of a bar's room, for the bar itself
inline constexpr double kSmallestLabel = 0.7; // of the text size

/// The axis of values: from `low` to `high` in even steps.
struct Scale {
    double low = 0, high = 1, step = 1;
    int steps() const;
    double at(int i) const { return low + i * step; }
    /// Where a value lies on an axis of length 1; one beyond its ends lies at them.
    double share(double value) const;

    /// A scale that holds all values and zero, with about `wanted` steps of 1, 2, 2.5 or 5 times a power of ten.
    static Scale over(double least, double most, int wanted);
    /// One with these ends, and such steps.
    static Scale between(double low, double high, int wanted);
};

/// One chart while it is drawn.
class ChartParts {
  public:
    ChartParts(const Chart& chart, ChartPoints points, const Locale& locale, double down, ChartSurface& surface,
               TextSetter& setter, const FontLibrary::Warn& warn);

  protected:
    Face& face() { return setter_.face(chart_.font); }
    double textWidth(StringView text) { return setter_.width(text, face(), chart_.size); }
    void text(StringView text, Point at, Anchor anchor) {
        surface_.line(text, face(), at, chart_.size, chart_.textColor, anchor);
    }
    void warn(const std::string& message) const { warn_(chart_.place + ": " + message); }
    String formatted(double value, const NumberPattern& pattern) const;
    String atAxis(double value) const { return formatted(value, chart_.format); }

    /// Swatches and names along the upper edge; `addition` gives what stands behind the name of a series.
    template <class Addition>
    void drawLegend(Addition&& addition) {
        std::vector<String> names;
        for (std::size_t i = 0; i < chart_.series.size(); ++i)
            names.push_back(chart_.series[i].legend.empty() ? String()
                                                            : fromUtf8(chart_.series[i].legend) + addition(i));
        placeLegend(names);
    }

    /// How many series are bars; lines or marks lie over those.
    std::size_t bars() const;
    bool isStacked() const { return chart_.kind == Chart::Kind::Stacked; }
    double value(std::size_t series, std::size_t point) const;
    /// Where the bar of a series begins and ends on the axis: at zero, or on those below it.
    std::pair<double, double> extent(std::size_t series, std::size_t point) const;
    /// The axis for all that is shown, or the one that the layout asks for; says what does not fit on that.
    Scale scaleFor(int wantedSteps) const;

    /// A number beside what shows it, where the layout wants numbers; smaller where it is wider than `room`, and
    /// left out where that does not do.
    void number(StringView text, Point at, Anchor anchor, double room, Rgb color);
    String numberText(double value) const { return formatted(value, *chart_.values); }
    /// A colour that is read on `ground`.
    Rgb readableOn(Rgb ground) const;

    const Chart& chart_;
    const Locale& locale_;
    ChartSurface& surface_;
    TextSetter& setter_;
    const FontLibrary::Warn& warn_;
    Box area_; ///< what is left of the chart's box
    std::vector<std::vector<double>> values_;
    std::vector<String> labels_;
    std::optional<std::pair<double, double>> limits_;
    std::size_t points_ = 0;

  private:
    void placeLegend(const std::vector<String>& names);
};

/// Charts whose points lie one below the other, with their labels at the left: horizontal bars and shares.
void drawLyingChart(const Chart& chart, ChartPoints points, const Locale& locale, double down,
                    ChartSurface& surface, TextSetter& setter, const FontLibrary::Warn& warn);

} // namespace kvtdruck::druckwerk
