// Prints one list of eight columns, 45 lines a page, in one of several ways: with the embedded engine through its
// control, with cairo and pango (a layout for each cell), with libharu. compare.py measures and compares them.
#include "druckwerk/druckwerk.h"
#include "list.h"
#include "values/text.h"

#include <cairo-pdf.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <hpdf.h>
#include <iostream>
#include <pango/pangocairo.h>
#include <string>

namespace {

using namespace kvtdruck;
using namespace list;

/// The record `i`: numbers in cents, texts as they are.
struct Record {
    std::array<long, 8> cents;
    std::array<std::string, 8> texts;
    explicit Record(long i) : cents(centsOf(i)) {
        texts[1] = kDescription + std::to_string(i);
        texts[2] = townOf(i);
    }
};

/// A number with thousands separators and a fixed number of decimals, as the other tools need it.
std::string formatted(long cents, int decimals) {
    const long value = std::labs(cents);
    std::string text = std::to_string(value / 100);
    for (auto at = static_cast<long>(text.size()) - 3; at > 0 && decimals > 0; at -= 3)
        text.insert(static_cast<std::size_t>(at), ".");
    std::array<char, 8> rest{};
    if (decimals > 0)
        std::snprintf(rest.data(), rest.size(), ",%0*ld", decimals, decimals == 2 ? value % 100 : value % 100 / 10);
    return (cents < 0 ? "-" : "") + text + rest.data();
}

std::string cell(const Record& record, std::size_t column) {
    return kColumns[column].number ? formatted(record.cents[column], kColumns[column].decimals)
                                   : record.texts[column];
}

void check(std::int32_t code, const druckwerk::Druckwerk& engine) {
    if (code == 0)
        return;
    std::cerr << engine.lastError().message << '\n';
    std::exit(1);
}

void printWithEngine(long rows, const std::string& output, const std::string& layout) {
    druckwerk::Options options;
    options.output = output;
    druckwerk::Druckwerk engine(std::make_shared<const druckwerk::Options>(options));
    std::array<String, 8> names;
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = fromUtf8(kColumns[i].name);
    String value;
    const auto define = [&](long i) {
        const Record record(i);
        for (std::size_t column = 0; column < names.size(); ++column) {
            if (kColumns[column]
                    .number) { // as the component hands numbers over: the shortest text, a decimal comma
                const long cents = record.cents[column];
                value = cents < 0 ? u"-" : u"";
                value += decimal(std::labs(cents) / 100);
                if (cents % 100 != 0) {
                    value += u',';
                    value += static_cast<char16_t>(u'0' + std::labs(cents) / 10 % 10);
                    if (cents % 10 != 0)
                        value += static_cast<char16_t>(u'0' + std::labs(cents) % 10);
                }
            } else {
                value = fromUtf8(record.texts[column]);
            }
            engine.call(Operation::LlDefineFieldExt, {StringView(names[column]), StringView(value),
                                                      kColumns[column].number ? kTypeNumeric : kTypeText});
        }
    };
    define(0);
    const String object = fromUtf8(layout.substr(0, layout.rfind('.')));
    check(engine.call(Operation::LlPrintWithBoxStart,
                      {2, StringView(object), 256, 2, WindowHandle{}, StringView(object)}),
          engine);
    engine.call(Operation::LlPrint);
    for (long i = 0; i < rows; ++i) {
        define(i);
        while (engine.call(Operation::LlPrintFields) == kEnginePageFull)
            engine.call(Operation::LlPrint);
    }
    engine.call(Operation::LlPrintFieldsEnd);
    check(engine.call(Operation::LlPrintEnd, {0}), engine);
}

void printWithPango(long rows, const std::string& output) {
    cairo_surface_t* surface = cairo_pdf_surface_create(output.c_str(), 210 * kPoints, kPageHeight * kPoints);
    cairo_t* drawing = cairo_create(surface);
    PangoLayout* layout = pango_cairo_create_layout(drawing);
    PangoFontDescription* font = pango_font_description_from_string("Liberation Sans");
    pango_font_description_set_absolute_size(font, kSize * PANGO_SCALE);
    pango_layout_set_font_description(layout, font);
    for (long i = 0; i < rows; ++i) {
        const auto line = static_cast<double>(i % kLinesPerPage);
        if (i > 0 && i % kLinesPerPage == 0)
            cairo_show_page(drawing);
        if (i % 2 == 1) {
            cairo_set_source_rgb(drawing, 0.96, 0.97, 0.98);
            cairo_rectangle(drawing, 12 * kPoints, (kFirstBand + line * kStep) * kPoints, 186 * kPoints,
                            kStep * kPoints);
            cairo_fill(drawing);
            cairo_set_source_rgb(drawing, 0.12, 0.16, 0.2);
        }
        const Record record(i);
        for (std::size_t column = 0; column < kColumns.size(); ++column) {
            const std::string text = cell(record, column);
            pango_layout_set_text(layout, text.c_str(), static_cast<int>(text.size()));
            int width = 0;
            if (kColumns[column].number)
                pango_layout_get_size(layout, &width, nullptr);
            cairo_move_to(drawing, kColumns[column].x * kPoints - static_cast<double>(width) / PANGO_SCALE,
                          (kFirstLine + line * kStep) * kPoints -
                              static_cast<double>(pango_layout_get_baseline(layout)) / PANGO_SCALE);
            pango_cairo_show_layout(drawing, layout);
        }
    }
    pango_font_description_free(font);
    g_object_unref(layout);
    cairo_destroy(drawing);
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
}

void printWithHaru(long rows, const std::string& output, const std::string& fontFile) {
    HPDF_Doc document = HPDF_New(
        [](HPDF_STATUS error, HPDF_STATUS, void*) {
            std::cerr << "libharu: " << error << '\n';
            std::exit(1);
        },
        nullptr);
    HPDF_SetCompressionMode(document, HPDF_COMP_ALL);
    HPDF_UseUTFEncodings(document);
    HPDF_Font font =
        HPDF_GetFont(document, HPDF_LoadTTFontFromFile(document, fontFile.c_str(), HPDF_TRUE), "UTF-8");
    HPDF_Page page = nullptr;
    for (long i = 0; i < rows; ++i) {
        const auto line = static_cast<double>(i % kLinesPerPage);
        if (i % kLinesPerPage == 0) {
            page = HPDF_AddPage(document);
            HPDF_Page_SetFontAndSize(page, font, static_cast<HPDF_REAL>(kSize));
        }
        const Record record(i);
        HPDF_Page_BeginText(page);
        for (std::size_t column = 0; column < kColumns.size(); ++column) {
            const std::string text = cell(record, column);
            const HPDF_REAL width = kColumns[column].number ? HPDF_Page_TextWidth(page, text.c_str()) : 0;
            HPDF_Page_TextOut(page, static_cast<HPDF_REAL>(kColumns[column].x * kPoints) - width,
                              static_cast<HPDF_REAL>((kPageHeight - kFirstLine - line * kStep) * kPoints),
                              text.c_str());
        }
        HPDF_Page_EndText(page);
    }
    HPDF_SaveToFile(document, output.c_str());
    HPDF_Free(document);
}

} // namespace

int main(int count, char** arguments) {
    if (count < 4) {
        std::cerr << "usage: list_rows engine|pango|haru ROWS OUTPUT [layout or font file]\n";
        return 2;
    }
    const std::string way = arguments[1];
    const long rows = std::atol(arguments[2]);
    const std::string file = count > 4 ? arguments[4] : "";
    if (way == "engine")
        printWithEngine(rows, arguments[3], file);
    else if (way == "pango")
        printWithPango(rows, arguments[3]);
    else
        printWithHaru(rows, arguments[3], file);
}
