// Pictures of characters (emoji): colours that a font has in the place of outlines.
#pragma once

#include "druckwerk/pdf/pdf_output.h"
#include "druckwerk/text/face.h"
#include "druckwerk/text/shaped_text.h"

#include <optional>
#include <string>

namespace kvtdruck::druckwerk {

/// A picture's colours, three bytes a pixel, and how opaque each pixel is.
struct Pixels {
    unsigned width = 0;
    unsigned height = 0;
    std::string colors;
    std::string mask;
};

/// The picture of a glyph at 128 pixels an em; nothing where there is none that can be read, or it is beyond
/// measure.
std::optional<Pixels> pixelsOf(const Face& face, std::uint32_t glyph);

/// Writes the picture as an image; gives its object.
int writeImage(PdfOutput& output, const Pixels& pixels);

/// Where the picture stands: on the glyph's extents, or else as wide as its advance and a fifth below the line.
void place(GlyphPicture& picture, const Face& face, std::uint32_t glyph, const Pixels& pixels);

} // namespace kvtdruck::druckwerk
