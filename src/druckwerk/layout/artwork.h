// Artwork that only the SVG library can draw, as forms of the document.
#pragma once

#include "druckwerk/layout/layout.h"

namespace kvtdruck::druckwerk {

/// Draws each foreign element of the layout once and makes it a form of the document, in their order. Raises a
/// Fault where the SVG library refuses one.
void embedArtwork(PdfDocument& document, const Layout& layout, const std::filesystem::path& layoutFolder);

} // namespace kvtdruck::druckwerk
