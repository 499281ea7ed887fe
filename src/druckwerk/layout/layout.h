// A layout as it is printed: bands of shapes, texts and charts, compiled from the SVG once for each print job.
#pragma once

#include "druckwerk/common/finding.h"
#include "druckwerk/expression/text_template.h"
#include "druckwerk/svg/layout_files.h"
#include "druckwerk/svg/path_data.h"
#include "druckwerk/svg/svg_style.h"

#include <deque>
#include <filesystem>
#include <map>
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
    std::size_t font = 0; ///< among the layout's fonts
    double size = 10;     ///< in points
    Rgb color;
    Anchor anchor = Anchor::Start;
    Point baseline;
    std::optional<Box> box;
    Fit fit = Fit::None;
    bool grows = false;
    bool breaksWord = false; ///< its last character is the hyphen of a word that goes on in another text
    bool goesOn = false;     ///< it begins with the rest of another text's word
    bool fromBottom = false; ///< of lines: the last one stands on the baseline, the others above it
    std::string written;     ///< with placeholders, as the layout has it
    std::optional<Matrix>
        turned;        ///< for text that does not run upright: maps the text from the origin to its place
    std::string place; ///< file, line, layer and element, for messages
    int line = 0;      ///< in the layout's file
    int element = 0;   ///< its number in the layout's file
};

struct Chart {
    enum class Kind : std::uint8_t { Bars, Stacked, Horizontal, Lines, Target, Share };
    struct Series {
        std::vector<Expression> values; ///< the points; with `rows` one, evaluated for each line
        std::string legend;
        Rgb color;
    };
    Kind kind = Kind::Bars;
    Box box;
    std::vector<Series> series;
    std::size_t lines = 0; ///< of the last series: drawn as lines over the bars
    std::vector<TextTemplate> labels;
    NumberPattern format{u"#.##0"};
    std::optional<NumberPattern> values; ///< of numbers beside what shows them
    std::string unit;                    ///< of the axis
    std::optional<std::pair<Expression, Expression>>
        scale;            ///< the ends of the axis; otherwise they follow the values
    std::size_t font = 0; ///< among the layout's fonts
    double size = 7;      ///< in points
    Rgb textColor;
    std::optional<Expression> rows; ///< which lines are its points; without it the points are in the series
    std::size_t rowChart = 0;       ///< with `rows`: its place among the layout's charts of lines
    AggregateScope scope = kTableScope;
    Matrix matrix;     ///< from the units within its group to points on the page
    std::string place; ///< file, line, layer and element, for messages
    int line = 0;      ///< in the layout's file
    int element = 0;   ///< its number in the layout's file
};

/// A drawing that only the SVG library can make.
struct ForeignDrawing {
    std::string id;    ///< of its element
    std::string title; ///< what it shows, in words; an ornament has none
};

struct ForeignItem {
    std::size_t drawing = 0; ///< among those of the layout
};

/// The element of a condition that chooses a look: it is printed in any case, as one or the other.
inline constexpr int kOfLook = 0;

/// What has to hold for an element, or one around it, to be printed.
struct Condition {
    Expression expression;
    int element = 0; ///< that has it: its number in the layout's file
    bool holds(const Scene& scene) const { return expression.holds(scene); }
};

struct Item {
    std::vector<std::shared_ptr<const Condition>> conditions;
    std::variant<Shape, TextItem, std::unique_ptr<Chart>, ForeignItem> content;
    bool late = false; ///< in a page band: printed when the page closes, because of its aggregates
};

struct Band {
    std::string label;
    std::string place; ///< file, line, layer and element, for messages
    int line = 0;
    double top = 0;
    double height = 0;
    std::vector<Item> items;
    std::optional<Expression> condition;
    std::optional<Expression> newPage;
    std::vector<TextTemplate> bookmark;
    bool repeats = false;
    bool alone = false; ///< may stand on the page after the line that it belongs to
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
    struct Font {
        FontRequest request;
        std::string place; ///< of its first use
    };
    std::vector<Font> fonts;
    std::vector<const Chart*> rowCharts;
    std::set<std::pair<int, int>> opacities;
    std::vector<ForeignDrawing> foreign;
    std::string foreignSource; ///< the SVG with an id for each of them
    /// A name that it shows or counts with.
    struct NameUse {
        std::string place;   ///< of its first use
        bool needed = false; ///< stands outside of conditions somewhere
    };
    std::map<std::size_t, NameUse> names; ///< by slot

    double flowTop() const;
    double flowBottom() const;
    /// The number of the font that is used at `place` among `fonts`, where it is added if it is new.
    std::size_t fontNumber(const FontRequest& font, const std::string& place);
};

/// Reads the layout `source` (SVG text), called `name` in messages, with the files that it names. What prevents
/// printing is among the findings as an error; then nothing useful is returned.
Layout readLayout(const std::string& source, const std::string& name, const LayoutFiles& files,
                  Definitions& definitions, std::vector<Finding>& findings);

/// The text of a layout file. Raises a Fault where it can't be read or is too large.
std::string readLayoutFile(const std::filesystem::path& file);

} // namespace kvtdruck::druckwerk
