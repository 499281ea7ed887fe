#include "druckwerk/page/artwork.h"

#include "druckwerk/common/deleter.h"
#include "druckwerk/common/fault.h"
#include "druckwerk/pdf/form_import.h"
#include "druckwerk/svg/limits.h"
#include "platform/posix/bounded_work.h"
#include "platform/posix/lazy_function.h"

#include <cairo-pdf.h>
#include <librsvg/rsvg.h>

namespace kvtdruck::druckwerk {

namespace {

constexpr const char* kLibrary = "librsvg-2.so.2"; // with those that it needs itself
const LazyFunction<decltype(::cairo_create)> cairo_create(kLibrary, "cairo_create");
const LazyFunction<decltype(::cairo_destroy)> cairo_destroy(kLibrary, "cairo_destroy");
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

/// A PDF with one page for each foreign element.
std::string drawElements(const Layout& layout, const std::filesystem::path& folder) {
    const Stream stream(g_memory_input_stream_new_from_data(
        layout.foreignSource.data(), static_cast<gssize>(layout.foreignSource.size()), nullptr));
    // Images are looked for beside the layout; the SVG library itself refuses anything above or elsewhere.
    const File base(g_file_new_for_path((folder / "layout.svg").c_str()));
    GError* error = nullptr;
    const Handle handle(
        rsvg_handle_new_from_stream_sync(stream.get(), base.get(), RSVG_HANDLE_FLAGS_NONE, nullptr, &error));
    if (!handle)
        fail(Error(error)->message);

    std::string pdf;
    const auto append = [](void* into, const unsigned char* data, unsigned size) {
        static_cast<std::string*>(into)->append(reinterpret_cast<const char*>(data), size);
        return CAIRO_STATUS_SUCCESS;
    };
    const Surface surface(cairo_pdf_surface_create_for_stream(append, &pdf, layout.width, layout.height));
    const Drawing drawing(cairo_create(surface.get()));
    const RsvgRectangle page{0, 0, layout.width, layout.height};
    for (const auto& id : layout.foreignIds) {
        if (rsvg_handle_render_layer(handle.get(), drawing.get(), ("#" + id).c_str(), &page, &error) == 0)
            fail("id=\"" + id + "\": " + Error(error)->message);
        cairo_show_page(drawing.get());
    }
    cairo_surface_finish(surface.get());
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        fail(cairo_status_to_string(cairo_surface_status(surface.get())));
    return pdf;
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

int embedArtwork(PdfDocument& document, const Layout& layout, const std::filesystem::path& layoutFolder) {
    const auto source = layoutFolder.string() + '\n' + layout.foreignSource;
    if (const auto first = document.formsOf(source))
        return *first;
    return document.useForms(source, importPages(document.output(), drawn(layout, layoutFolder)));
}

} // namespace kvtdruck::druckwerk
