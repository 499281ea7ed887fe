#include "cli/library_versions.h"

#include <CLI/Version.hpp>
#include <cairo.h>
#include <cups/cups.h>
#include <fontconfig/fontconfig.h>
#include <fribidi.h>
#include <hb.h>
#include <libdeflate.h>
#include <librsvg/rsvg.h>
#include <libxml/xmlversion.h>
#include <png.h>
#include <qpdf/qpdf-c.h>
#include <sqlite3.h>
#include <zlib.h>

#include <utility>

namespace kvtdruck::cli {
namespace {

/// Major, minor and micro versions as a text.
template <class... Numbers>
std::string dotted(Numbers... numbers) {
    std::string text;
    ((text += (text.empty() ? "" : ".") + std::to_string(numbers)), ...);
    return text;
}

std::string fontconfigVersion() {
    const int version = FcGetVersion();
    return dotted(version / 10000, version / 100 % 100, version % 100);
}

/// As "10637" for 1.6.37.
std::string pngVersion() {
    const auto version = png_access_version_number();
    return dotted(version / 10000, version / 100 % 100, version % 100);
}

} // namespace

std::string versionText() {
    const std::pair<const char*, std::string> libraries[] = {
        {"cairo", cairo_version_string()},
        {"CLI11", CLI11_VERSION},
        {"CUPS", dotted(CUPS_VERSION_MAJOR, CUPS_VERSION_MINOR, CUPS_VERSION_PATCH)},
        {"fontconfig", fontconfigVersion()},
        {"FriBidi", dotted(FRIBIDI_MAJOR_VERSION, FRIBIDI_MINOR_VERSION, FRIBIDI_MICRO_VERSION)},
        {"HarfBuzz", hb_version_string()},
        {"libdeflate", LIBDEFLATE_VERSION_STRING},
        {"libpng", pngVersion()},
        {"librsvg", dotted(rsvg_major_version, rsvg_minor_version, rsvg_micro_version)},
        {"libxml2", LIBXML_DOTTED_VERSION},
        {"qpdf", qpdf_get_qpdf_version()},
        {"SQLite", sqlite3_libversion()},
        {"toml11", KVTDRUCK_TOML11_VERSION},
        {"unixODBC", KVTDRUCK_ODBC_VERSION},
        {"zlib", zlibVersion()},
    };
    std::string text = "kvtdruck " KVTDRUCK_VERSION;
    for (const auto& [name, version] : libraries)
        text += "\n  " + std::string(name) + " " + version;
    return text;
}

} // namespace kvtdruck::cli
