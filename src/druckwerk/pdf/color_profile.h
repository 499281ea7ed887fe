// The colours of a document: what its red, green and blue look like.
#pragma once

#include <string>

namespace kvtdruck::druckwerk {

/// An ICC profile of the colour space sRGB (IEC 61966-2-1), version 4.
std::string srgbProfile();

} // namespace kvtdruck::druckwerk
