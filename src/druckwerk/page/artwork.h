// Artwork that only the SVG library can draw, as forms of the document.
#pragma once

#include "druckwerk/layout/layout.h"
#include "druckwerk/page/document.h"

#include <filesystem>

namespace kvtdruck::druckwerk {

/// Makes each foreign element of the layout a form of the document, in their order; gives the number of the first.
/// What a document has of an earlier job is used again. Raises a Fault where the SVG library refuses an element.
std::size_t embedArtwork(PdfDocument& document, const Layout& layout, const std::filesystem::path& layoutFolder);

} // namespace kvtdruck::druckwerk
