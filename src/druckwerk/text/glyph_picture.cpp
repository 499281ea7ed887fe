#include "druckwerk/text/glyph_picture.h"

#include "druckwerk/common/deleter.h"

#include <hb-ot.h>
#include <hb.h>
#include <memory>
#include <png.h>

namespace kvtdruck::druckwerk {

namespace {

using Blob = std::unique_ptr<hb_blob_t, Deleter<hb_blob_destroy>>;

} // namespace

std::optional<Pixels> pixelsOf(const Face& face, std::uint32_t glyph) {
    hb_font_t* font = face.font();
    hb_font_set_ppem(font, 128, 128);
    const Blob blob(hb_ot_color_glyph_reference_png(font, glyph));
    unsigned size = 0;
    const char* data = hb_blob_get_data(blob.get(), &size);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (size == 0 || png_image_begin_read_from_memory(&image, data, size) == 0 || image.width > 512 ||
        image.height > 512) {
        png_image_free(&image);
        return std::nullopt;
    }
    image.format = PNG_FORMAT_RGBA;
    std::string bytes(PNG_IMAGE_SIZE(image), '\0');
    if (png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) == 0)
        return std::nullopt;
    Pixels pixels{image.width, image.height, {}, {}};
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        pixels.colors.append(bytes, i, 3);
        pixels.mask += bytes[i + 3];
    }
    return pixels;
}

int writeImage(PdfOutput& output, const Pixels& pixels) {
    const int mask = output.allocate();
    const int image = output.allocate();
    const std::string extent = "/Type/XObject/Subtype/Image/Width " + std::to_string(pixels.width) + "/Height " +
                               std::to_string(pixels.height) + "/BitsPerComponent 8";
    output.writeStream(mask, extent + "/ColorSpace/DeviceGray", pixels.mask);
    output.writeStream(image, extent + "/ColorSpace/DeviceRGB/SMask " + reference(mask), pixels.colors);
    return image;
}

void place(GlyphPicture& picture, const Face& face, std::uint32_t glyph, const Pixels& pixels) {
    const double em = face.unitsPerEm();
    hb_glyph_extents_t extents{};
    if (hb_font_get_glyph_extents(face.font(), glyph, &extents) != 0 && extents.width != 0 && extents.height != 0) {
        picture.left = extents.x_bearing / em;
        picture.width = extents.width / em;
        picture.height = -extents.height / em;
        picture.bottom = (extents.y_bearing + extents.height) / em;
        return;
    }
    picture.width = hb_font_get_glyph_h_advance(face.font(), glyph) / em;
    picture.height = picture.width * pixels.height / pixels.width;
    picture.bottom = -0.2 * picture.height;
}

} // namespace kvtdruck::druckwerk
