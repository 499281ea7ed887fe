// The transform attribute of SVG elements.
#pragma once

#include "druckwerk/common/geometry.h"

#include <optional>
#include <string_view>

namespace kvtdruck::druckwerk {

/// The map that a list such as "translate(10-5), rotate(30)" stands for, with or without units
/// (https://www.w3.org/TR/css-transforms-1/#svg-syntax); nothing where it is none, or beyond all measure.
std::optional<Matrix> parseTransform(std::string_view text);

} // namespace kvtdruck::druckwerk
