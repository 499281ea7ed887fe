// A layout as it is printed: bands of shapes, texts and charts, compiled from the SVG once for each print job.
#pragma once

#include "druckwerk/common/finding.h"
#include "druckwerk/expression/text_template.h"
#include "druckwerk/page/document.h"
#include "druckwerk/svg/path_data.h"
#include "druckwerk/svg/svg_style.h"

#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace kvtdruck::druckwerk {

/// A filled or stroked outline in plain colours.
struct Shape {
    Outline outline;
    std::string before; ///< PDF operators that set colours and line styles
    std::string after;  ///< the operator that paints, and what ends the settings
    std::string compiled;
    bool atEdge = false; ///< part of it lies at its band's lower edge and moves when the band grows

    /// The PDF operators; every point at or below `edge` moves down by `growth`.
    std::string operators(double pageHeight, double edge = 0, double growth = 0) const;
};

enum class Fit : std::uint8_t { Cut, Shrink, Wrap, None };

/// A text with or without placeholders.
struct TextItem {
    explicit TextItem(TextTemplate filled) : text(std::move(filled)) {}

    TextTemplate text;
    FontRequest font;
    double size = 10; ///< in points
    Rgb color;
    Anchor anchor = Anchor::Start;
    Point baseline;
    std::optional<Box> box;
    Fit fit = Fit::None;
    bool grows = false;
    std::optional<Matrix>
        turned;              ///< for text that does not run upright: maps the text from the origin to its place
    std::string description; ///< for messages
    Face* face = nullptr;    ///< found when a print job begins
};

struct Chart {
    enum class Kind : std::uint8_t { Bars, Lines, Target, Share };
    struct Series {
        std::vector<Expression> values; ///< the points; with `rows` one, evaluated for each line
        std::string legend;
        Rgb color;
    };
    Kind kind = Kind::Bars;
    Box box;
    std::vector<Series> series;
    std::vector<TextTemplate> labels;
    NumberPattern format{u"#.##0"};
    FontRequest font;
    double size = 7;
    Rgb textColor;
    Face* face = nullptr;
    std::optional<Expression> rows; ///< which lines are its points; without it the points are in the series
    AggregateScope scope = kTableScope;
    // what lines have given so far
    std::vector<std::vector<double>> collected;
    std::vector<String> collectedLabels;
    std::string description;
};

/// An element that only the SVG library can draw, by its id.
struct ForeignItem {
    std::string id;
    int form = 0; ///< number of the form among the document's resources
};

struct Item {
    std::vector<std::shared_ptr<const Expression>> conditions;
    std::variant<Shape, TextItem, std::unique_ptr<Chart>, ForeignItem> content;
    bool late = false; ///< in a page band: printed when the page closes, because of its aggregates
};

struct Band {
    std::string label;
    int line = 0;
    double top = 0;
    double height = 0;
    std::vector<Item> items;
    std::optional<Expression> condition;
    std::optional<Expression> newPage;
    std::vector<TextTemplate> bookmark;
    bool repeats = false;
    bool grows = false;
    double bottom() const { return top + height; }
};

/// One level of grouping.
struct Group {
    std::string name; ///< data-on
    std::vector<std::size_t> keys;
    std::optional<Band> head;
    std::optional<Band> foot;
};

struct Layout {
    double width = 0;  ///< in points
    double height = 0; ///< in points
    std::vector<Band> page;
    std::optional<Band> columnHead, row, carriedIn, carriedOut, sum, footer;
    std::vector<Group> groups;
    Aggregates aggregates;
    std::vector<Chart*> rowCharts;
    std::set<std::pair<int, int>> opacities;
    std::vector<std::string> foreignIds;
    std::string foreignSource;         ///< the SVG with an id for each foreign element
    std::set<std::size_t> slots;       ///< the names that it shows
    std::set<std::size_t> neededSlots; ///< those of them that stand outside of conditions somewhere

    double flowTop() const;
    double flowBottom() const;
    /// Calls `visit` for each band there is.
    template <class Visit>
    void forEachBand(Visit&& visit);
};

template <class Visit>
void Layout::forEachBand(Visit&& visit) {
    for (auto& band : page)
        visit(band);
    for (auto* band : {&columnHead, &row, &carriedIn, &carriedOut, &sum, &footer})
        if (*band)
            visit(**band);
    for (auto& group : groups)
        for (auto* band : {&group.head, &group.foot})
            if (*band)
                visit(**band);
}

/// Reads the layout `source` (SVG text), called `name` in messages, from folder `folder`. What prevents printing is
/// among the findings as an error; then nothing useful is returned.
Layout readLayout(const std::string& source, const std::string& name, const std::filesystem::path& folder,
                  Definitions& definitions, std::vector<Finding>& findings);

/// The text of a layout file. Raises a Fault where it can't be read or is too large.
std::string readLayoutFile(const std::filesystem::path& file);

} // namespace kvtdruck::druckwerk
