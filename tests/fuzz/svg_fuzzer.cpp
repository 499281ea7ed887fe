// Any bytes as what stands in the attributes and style sheets of a drawing: path data, points, transforms, colours,
// lengths, styles.
#include "druckwerk/common/fault.h"
#include "druckwerk/svg/color.h"
#include "druckwerk/svg/path_data.h"
#include "druckwerk/svg/svg_style.h"
#include "druckwerk/svg/transform_list.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kvtdruck::druckwerk;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    bool whole = false;
    Outline outline = parsePath(text, whole);
    transform(outline, {1, 2, 3, 4, 5, 6});
    parsePolygon(text, true, whole);
    parseTransform(text);
    parseColor(text);
    parseLength(text);
    Style style;
    try {
        StyleSheet sheet;
        sheet.add(text);
        sheet.apply(style, "rect", "band zahl", "x");
        for (const auto& [property, value] : parseDeclarations(text))
            style.apply(property, value);
    } catch (const Fault&) { // a sheet that imports another one
    }
    const auto end = text.find(':');
    if (end != std::string_view::npos)
        style.apply(text.substr(0, end), text.substr(end + 1));
    return 0;
}
