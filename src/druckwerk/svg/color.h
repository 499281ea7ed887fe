// The colours of CSS.
#pragma once

#include "druckwerk/common/geometry.h"

#include <optional>
#include <string_view>

namespace kvtdruck::druckwerk {

struct Color {
    Rgb rgb;
    double alpha = 1; ///< 0 is transparent
};

/// A colour as CSS writes it: by one of its 148 names in any letter case, in hexadecimal digits, as rgb() or hsl().
std::optional<Color> parseColor(std::string_view text);

} // namespace kvtdruck::druckwerk
