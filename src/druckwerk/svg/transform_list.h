// The transform attribute of SVG elements.
#pragma once

#include "druckwerk/common/geometry.h"

#include <string_view>

namespace kvtdruck::druckwerk {

/// The map that a list such as "translate(10 5) rotate(30)" stands for.
Matrix parseTransform(std::string_view text);

} // namespace kvtdruck::druckwerk
