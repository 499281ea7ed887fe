#include "druckwerk/page/artwork.h"

#include "druckwerk/common/deleter.h"
#include "druckwerk/common/fault.h"
#include "druckwerk/pdf/form_import.h"
#include "druckwerk/svg/limits.h"
#include "platform/posix/bounded_work.h"
#include "platform/posix/lazy_function.h"

#include <algorithm>
#include <cairo-pdf.h>
#include <cmath>
#include <cstring>
#include <librsvg/rsvg.h>

namespace kvtdruck::druckwerk {

namespace {

constexpr const char* kLibrary = "librsvg-2.so.2"; // with those that it needs itself
const LazyFunction<decltype(::cairo_create)> cairo_create(kLibrary, "cairo_create");
const LazyFunction<decltype(::cairo_destroy)> cairo_destroy(kLibrary, "cairo_destroy");
const LazyFunction<decltype(::cairo_image_surface_create)> cairo_image_surface_create(kLibrary,
                                                                                      "cairo_image_surface_create");
const LazyFunction<decltype(::cairo_image_surface_get_data)>
    cairo_image_surface_get_data(kLibrary, "cairo_image_surface_get_data");
const LazyFunction<decltype(::cairo_image_surface_get_height)>
    cairo_image_surface_get_height(kLibrary, "cairo_image_surface_get_height");
const LazyFunction<decltype(::cairo_image_surface_get_stride)>
    cairo_image_surface_get_stride(kLibrary, "cairo_image_surface_get_stride");
const LazyFunction<decltype(::cairo_image_surface_get_width)>
    cairo_image_surface_get_width(kLibrary, "cairo_image_surface_get_width");
const LazyFunction<decltype(::cairo_pdf_surface_create_for_stream)>
    cairo_pdf_surface_create_for_stream(kLibrary, "cairo_pdf_surface_create_for_stream");
const LazyFunction<decltype(::cairo_show_page)> cairo_show_page(kLibrary, "cairo_show_page");
const LazyFunction<decltype(::cairo_status_to_string)> cairo_status_to_string(kLibrary, "cairo_status_to_string");
const LazyFunction<decltype(::cairo_surface_destroy)> cairo_surface_destroy(kLibrary, "cairo_surface_destroy");
const LazyFunction<decltype(::cairo_surface_finish)> cairo_surface_finish(kLibrary, "cairo_surface_finish");
const LazyFunction<decltype(::cairo_surface_status)> cairo_surface_status(kLibrary, "cairo_surface_status");
const LazyFunction<decltype(::g_error_free)> g_error_free(kLibrary, "g_error_free");
const LazyFunction<decltype(::g_file_new_for_path)> g_file_new_for_path(kLibrary, "g_file_new_for_path");
const LazyFunction<decltype(::g_memory_input_stream_new_from_data)>
    g_memory_input_stream_new_from_data(kLibrary, "g_memory_input_stream_new_from_data");
const LazyFunction<decltype(::g_object_unref)> g_object_unref(kLibrary, "g_object_unref");
const LazyFunction<decltype(::rsvg_handle_new_from_stream_sync)>
    rsvg_handle_new_from_stream_sync(kLibrary, "rsvg_handle_new_from_stream_sync");
const LazyFunction<decltype(::rsvg_handle_render_layer)> rsvg_handle_render_layer(kLibrary,
                                                                                  "rsvg_handle_render_layer");

using Handle = std::unique_ptr<RsvgHandle, Deleter<&g_object_unref>>;
using Stream = std::unique_ptr<GInputStream, Deleter<&g_object_unref>>;
using File = std::unique_ptr<GFile, Deleter<&g_object_unref>>;
using Error = std::unique_ptr<GError, Deleter<&g_error_free>>;
using Surface = std::unique_ptr<cairo_surface_t, Deleter<&cairo_surface_destroy>>;
using Drawing = std::unique_ptr<cairo_t, Deleter<&cairo_destroy>>;

[[noreturn]] void fail(const std::string& reason) {
    throw WorkFailed("Die Zeichnung des Layouts kann nicht dargestellt werden: " + reason);
}

Handle readSource(const Layout& layout, const std::filesystem::path& folder) {
    const Stream stream(g_memory_input_stream_new_from_data(
        layout.foreignSource.data(), static_cast<gssize>(layout.foreignSource.size()), nullptr));
    // Images are looked for beside the layout; the SVG library itself refuses anything above or elsewhere.
    const File base(g_file_new_for_path((folder / "layout.svg").c_str()));
    GError* error = nullptr;
    Handle handle(
        rsvg_handle_new_from_stream_sync(stream.get(), base.get(), RSVG_HANDLE_FLAGS_NONE, nullptr, &error));
    if (!handle)
        fail(Error(error)->message);
    return handle;
}

void render(RsvgHandle* handle, cairo_t* drawing, const std::string& id, const RsvgRectangle& page) {
    GError* error = nullptr;
    if (rsvg_handle_render_layer(handle, drawing, ("#" + id).c_str(), &page, &error) == 0)
        fail("id=\"" + id + "\": " + Error(error)->message);
}

/// The part of a picture that is not blank, in its pixels.
Box inkOf(cairo_surface_t* picture) {
    const int width = cairo_image_surface_get_width(picture);
    const int height = cairo_image_surface_get_height(picture);
    const int stride = cairo_image_surface_get_stride(picture);
    const unsigned char* row = cairo_image_surface_get_data(picture);
    int left = width, right = 0, top = height, bottom = 0;
    for (int y = 0; y < height && row != nullptr; ++y, row += stride)
        for (int x = 0; x < width; ++x)
            if (row[x] != 0) {
                left = std::min(left, x);
                right = std::max(right, x + 1);
                top = std::min(top, y);
                bottom = y + 1;
            }
    return right == 0 ? Box{} : Box{double(left), double(top), double(right - left), double(bottom - top)};
}

/// What the drawing covers of the page, to a point. The SVG library's own answer would be for another resolution,
/// and that of a recording the whole page where there are groups.
Box inkOf(RsvgHandle* handle, const std::string& id, const RsvgRectangle& page) {
    constexpr double kMostPixels = 2000;
    const double scale = std::min(1.0, kMostPixels / std::max(page.width, page.height));
    const RsvgRectangle small{0, 0, page.width * scale, page.height * scale};
    const Surface picture(cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(std::ceil(small.width)),
                                                     static_cast<int>(std::ceil(small.height))));
    const Drawing drawing(cairo_create(picture.get()));
    render(handle, drawing.get(), id, small);
    const Box ink = inkOf(picture.get());
    return {ink.x / scale, ink.y / scale, ink.width / scale, ink.height / scale};
}

/// What each drawing covers, where it has a title, and behind that a PDF with a page for each.
std::string drawElements(const Layout& layout, const std::filesystem::path& folder) {
    const Handle handle = readSource(layout, folder);
    std::string pdf;
    const auto append = [](void* into, const unsigned char* data, unsigned size) {
        static_cast<std::string*>(into)->append(reinterpret_cast<const char*>(data), size);
        return CAIRO_STATUS_SUCCESS;
    };
    const Surface surface(cairo_pdf_surface_create_for_stream(append, &pdf, layout.width, layout.height));
    const Drawing drawing(cairo_create(surface.get()));
    const RsvgRectangle page{0, 0, layout.width, layout.height};
    std::string inks;
    for (const ForeignDrawing& foreign : layout.foreign) {
        render(handle.get(), drawing.get(), foreign.id, page);
        cairo_show_page(drawing.get());
        const Box ink = foreign.title.empty() ? Box{} : inkOf(handle.get(), foreign.id, page);
        inks.append(reinterpret_cast<const char*>(&ink), sizeof ink);
    }
    cairo_surface_finish(surface.get());
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        fail(cairo_status_to_string(cairo_surface_status(surface.get())));
    return inks + pdf;
}

/// The drawing, made where it can neither compute nor grow for ever.
std::string drawn(const Layout& layout, const std::filesystem::path& folder) {
    InstalledFonts::awaitPreparation();
    addressOf(kLibrary, "rsvg_handle_render_layer"); // loads it once, not in every copy of this process
    std::optional<std::string> pdf;
    try {
        pdf = runBounded({limits::kArtworkComputing, limits::kArtworkWaiting, limits::kArtworkMemory},
                         [&] { return drawElements(layout, folder); });
    } catch (const WorkFailed& failure) {
        throw Fault(kLayoutInvalid, failure.what());
    }
    if (!pdf)
        throw Fault(kLayoutRefused, "Die Zeichnung des Layouts braucht zu viel Zeit oder Speicher");
    return *std::move(pdf);
}

} // namespace

std::size_t embedArtwork(PdfDocument& document, const Layout& layout, const std::filesystem::path& layoutFolder) {
    const auto source = layoutFolder.string() + '\n' + layout.foreignSource;
    if (const auto first = document.formsOf(source))
        return *first;
    const std::string drawing = drawn(layout, layoutFolder);
    std::vector<Box> inks(layout.foreign.size());
    const std::size_t size = inks.size() * sizeof(Box);
    const std::string pages = drawing.substr(size); // raises where a drawing that went wrong is shorter than this
    std::memcpy(inks.data(), drawing.data(), size);
    std::vector<PdfDocument::Form> forms;
    for (const int object : importPages(document.output(), pages))
        forms.push_back({object, inks.at(forms.size())});
    return document.useForms(source, forms);
}

} // namespace kvtdruck::druckwerk
