// What a layout shows in a drawing program: values as they print, in the place of placeholders and charts.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// What a print has shown of a layout, by the numbers of its elements. Texts are UTF-8.
struct LayoutSample {
    struct Text {
        std::string written; ///< with placeholders, as the layout has it
        std::vector<std::string> lines;
        double size = 1;         ///< of the letters, as a share of their own size
        bool fromBottom = false; ///< the last line stands on the baseline, otherwise the first
    };
    std::map<int, Text> texts;         ///< of fields, and of texts outside of them
    std::map<int, bool> conditions;    ///< whether the element's condition holds
    std::map<int, std::string> charts; ///< the drawing: a group of SVG in the units within the chart's group
};

/// The layout `svg` with the sample for its elements; nothing where it is no well-formed XML.
std::optional<std::string> withSample(const std::string& svg, const LayoutSample& sample);

} // namespace kvtdruck::druckwerk
