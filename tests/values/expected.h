// What the tests of values compare with.
#pragma once

#include "values/locale.h"

#include <limits>

namespace kvtdruck {

inline const Locale& german = germanLocale();
constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace kvtdruck
