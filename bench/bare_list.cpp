// The limit: what printing the list takes where nothing but the list is known. No layout, no report, no database,
// no shaping; every place on the page is a constant, widths come from a table, text is appended to one buffer.
// Head, stripes and page numbers are those of list_layout.svg, the compression is the engine's.
//
// usage: bare_list ROWS OUTPUT FONTFILE
#include "list.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <hb-ot.h>
#include <hb-subset.h>
#include <hb.h>
#include <libdeflate.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace list;

constexpr int kCompressionLevel = 1;
constexpr std::size_t kBufferSize = 1 << 16;
constexpr std::size_t kPagesPerNode = 64;
constexpr int kCatalog = 1;
constexpr int kRoot = 2;
constexpr int kFont = 3;
constexpr int kDescriptor = 4;
constexpr int kFontFile = 5;

/// The font: widths of the letters of Windows-1252 in thousandths of an em, and the file's part that has them.
class Font {
  public:
    explicit Font(const char* file) {
        hb_blob_t* blob = hb_blob_create_from_file_or_fail(file);
        if (blob == nullptr) {
            std::fprintf(stderr, "no font: %s\n", file);
            std::exit(1);
        }
        face_ = hb_face_create(blob, 0);
        hb_blob_destroy(blob);
        hb_font_t* font = hb_font_create(face_);
        for (unsigned letter = 32; letter < 256; ++letter) {
            hb_codepoint_t glyph = 0;
            if (hb_font_get_nominal_glyph(font, letter, &glyph) != 0)
                widths_[letter] = static_cast<int>(hb_font_get_glyph_h_advance(font, glyph)) * 1000 /
                                  static_cast<int>(hb_face_get_upem(face_));
        }
        hb_font_destroy(font);
    }
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font() { hb_face_destroy(face_); }

    int width(unsigned char letter) const { return widths_[letter]; }

    std::string subset() const {
        hb_subset_input_t* input = hb_subset_input_create_or_fail();
        hb_set_add_range(hb_subset_input_unicode_set(input), 32, 255);
        hb_subset_input_set_flags(input, HB_SUBSET_FLAGS_NO_HINTING);
        hb_face_t* reduced = hb_subset_or_fail(face_, input);
        hb_subset_input_destroy(input);
        hb_blob_t* blob = hb_face_reference_blob(reduced);
        hb_face_destroy(reduced);
        unsigned size = 0;
        const char* data = hb_blob_get_data(blob, &size);
        std::string bytes(data, size);
        hb_blob_destroy(blob);
        return bytes;
    }

  private:
    hb_face_t* face_;
    std::array<int, 256> widths_{};
};

/// A PDF file, written from front to back.
class Pdf {
  public:
    explicit Pdf(const char* name)
        : file_(std::fopen(name, "wb")), compressor_(libdeflate_alloc_compressor(kCompressionLevel)),
          offsets_(kFontFile) {
        if (file_ == nullptr) {
            std::perror(name);
            std::exit(1);
        }
        std::setvbuf(file_, nullptr, _IOFBF, kBufferSize);
        write("%PDF-1.7\n");
    }
    Pdf(const Pdf&) = delete;
    Pdf& operator=(const Pdf&) = delete;
    ~Pdf() {
        libdeflate_free_compressor(compressor_);
        std::fclose(file_);
    }

    int allocate() {
        offsets_.push_back(0);
        return static_cast<int>(offsets_.size());
    }
    void object(int number, std::string_view body) {
        begin(number);
        write(body);
        write("\nendobj\n");
    }
    void stream(int number, const std::string& entries, std::string_view data) {
        compressed_.resize(libdeflate_zlib_compress_bound(compressor_, data.size()));
        const auto size =
            libdeflate_zlib_compress(compressor_, data.data(), data.size(), compressed_.data(), compressed_.size());
        begin(number);
        write("<</Filter/FlateDecode" + entries + "/Length " + std::to_string(size) + ">>stream\n");
        write(std::string_view(compressed_).substr(0, size));
        write("\nendstream\nendobj\n");
    }
    void finish() {
        const auto start = position_;
        write("xref\n0 " + std::to_string(offsets_.size() + 1) + "\n0000000000 65535 f \n");
        std::array<char, 32> entry{};
        for (const auto offset : offsets_) {
            std::snprintf(entry.data(), entry.size(), "%010zu 00000 n \n", offset);
            write(entry.data());
        }
        write("trailer\n<</Size " + std::to_string(offsets_.size() + 1) + "/Root " + std::to_string(kCatalog) +
              " 0 R>>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n");
    }

  private:
    void begin(int number) {
        offsets_[static_cast<std::size_t>(number) - 1] = position_;
        write(std::to_string(number) + " 0 obj\n");
    }
    void write(std::string_view data) {
        std::fwrite(data.data(), 1, data.size(), file_);
        position_ += data.size();
    }

    std::FILE* file_;
    libdeflate_compressor* compressor_;
    std::string compressed_;
    std::size_t position_ = 0;
    std::vector<std::size_t> offsets_;
};

/// Appends text and numbers to a page.
class Page {
  public:
    explicit Page(const Font& font) : font_(font) {}

    std::string_view text() const { return text_; }
    void clear() { text_.clear(); }
    void append(std::string_view operators) { text_ += operators; }

    /// A number with two decimals, zeros at its end left out.
    void appendHundredths(long value) {
        std::array<char, 24> digits;
        char* at = digits.data();
        if (value < 0) {
            *at++ = '-';
            value = -value;
        }
        at = std::to_chars(at, digits.data() + digits.size(), value / 100).ptr;
        if (const long rest = value % 100; rest != 0) {
            *at++ = '.';
            *at++ = static_cast<char>('0' + rest / 10);
            if (rest % 10 != 0)
                *at++ = static_cast<char>('0' + rest % 10);
        }
        text_.append(digits.data(), at);
    }

    void beginText() {
        text_ += "BT\n";
        x_ = y_ = 0;
    }
    /// Shows `text` (Windows-1252) with its left or its right end at `x`; both lengths in hundredths of a point.
    void show(std::string_view text, long x, long y, bool right) {
        if (right) {
            long width = 0;
            for (const char letter : text)
                width += font_.width(static_cast<unsigned char>(letter));
            x -= static_cast<long>(static_cast<double>(width) * kSize / 10);
        }
        appendHundredths(x - x_);
        text_ += ' ';
        appendHundredths(y - y_);
        text_ += " Td(";
        text_ += text; // no letter of the list has a meaning of its own in PDF
        text_ += ")Tj\n";
        x_ = x;
        y_ = y;
    }

  private:
    const Font& font_;
    std::string text_;
    long x_ = 0;
    long y_ = 0;
};

constexpr long hundredths(double millimetres) {
    return static_cast<long>(millimetres * kPoints * 100);
}

/// A number with its decimals in German notation, written in front of `end`.
std::string_view formatted(long cents, int decimals, char* end) {
    const bool negative = cents < 0;
    unsigned long rest = static_cast<unsigned long>(negative ? -cents : cents);
    char* begin = end;
    for (int place = 2; place > 0; --place, rest /= 10)
        if (place <= decimals)
            *--begin = static_cast<char>('0' + rest % 10);
    if (decimals > 0)
        *--begin = ',';
    for (int count = 0; rest != 0 || count == 0; ++count, rest /= 10) {
        if (decimals > 0 && count > 0 && count % 3 == 0)
            *--begin = '.';
        *--begin = static_cast<char>('0' + rest % 10);
    }
    if (negative)
        *--begin = '-';
    return {begin, static_cast<std::size_t>(end - begin)};
}

/// Windows-1252 of text whose letters have at most two bytes in UTF-8.
std::string latin(std::string_view utf8) {
    std::string text;
    for (const char byte : utf8)
        if ((byte & 0xC0) != 0x80)
            text += static_cast<char>((byte & 0x80) == 0 ? byte : (byte & 0x03) << 6);
        else
            text.back() = static_cast<char>(text.back() | (byte & 0x3F));
    return text;
}

void printLine(Page& page, long i, const std::array<std::string, 3>& towns) {
    std::array<char, 64> buffer;
    const auto cents = centsOf(i);
    const long y = hundredths(kPageHeight - kFirstLine - static_cast<double>(i % kLinesPerPage) * kStep);
    for (std::size_t column = 0; column < kColumns.size(); ++column) {
        const auto& [name, x, number, decimals] = kColumns[column];
        if (number) {
            page.show(formatted(cents[column], decimals, buffer.data() + buffer.size()), hundredths(x), y, true);
        } else if (column == 2) {
            page.show(towns[static_cast<std::size_t>(i % 3)], hundredths(x), y, false);
        } else {
            char* end = std::copy_n(kDescription, std::string_view(kDescription).size(), buffer.data());
            end = std::to_chars(end, buffer.data() + buffer.size(), i).ptr;
            page.show({buffer.data(), static_cast<std::size_t>(end - buffer.data())}, hundredths(x), y, false);
        }
    }
}

void printPage(Page& page, long first, long rows, const std::array<std::string, 3>& towns) {
    const long end = std::min(first + kLinesPerPage, rows);
    page.clear();
    page.append(".96 .97 .98 rg\n");
    for (long i = first + 1; i < end; i += 2) {
        const double top = kFirstBand + static_cast<double>(i % kLinesPerPage) * kStep;
        for (const double length : {12.0, kPageHeight - top - kStep, 186.0, kStep}) {
            page.appendHundredths(hundredths(length));
            page.append(" ");
        }
        page.append("re f\n");
    }
    page.append(".12 .16 .2 rg /F0 ");
    page.appendHundredths(static_cast<long>(kSize * 100));
    page.append(" Tf\n");
    page.beginText();
    for (const Column& column : kColumns)
        page.show(column.name, hundredths(column.x), hundredths(kPageHeight - 24), column.number);
    for (long i = first; i < end; ++i)
        printLine(page, i, towns);
    page.show("Seite " + std::to_string(first / kLinesPerPage + 1) + " von " +
                  std::to_string((rows + kLinesPerPage - 1) / kLinesPerPage),
              hundredths(198), hundredths(kPageHeight - 281), true);
    page.append("ET\n");
}

void embed(Pdf& pdf, const Font& font) {
    std::string widths;
    for (unsigned letter = 32; letter < 256; ++letter)
        widths += std::to_string(font.width(static_cast<unsigned char>(letter))) + " ";
    pdf.object(kFont, "<</Type/Font/Subtype/TrueType/BaseFont/List/Encoding/WinAnsiEncoding/FirstChar 32"
                      "/LastChar 255/FontDescriptor " +
                          std::to_string(kDescriptor) + " 0 R/Widths[" + widths + "]>>");
    pdf.object(kDescriptor, "<</Type/FontDescriptor/FontName/List/Flags 32/FontBBox[-500 -300 1400 1000]"
                            "/ItalicAngle 0/Ascent 905/Descent -212/CapHeight 729/StemV 80/FontFile2 " +
                                std::to_string(kFontFile) + " 0 R>>");
    const auto file = font.subset();
    pdf.stream(kFontFile, "/Length1 " + std::to_string(file.size()), file);
}

void print(long rows, const char* output, const char* fontFile) {
    const Font font(fontFile);
    Pdf pdf(output);
    Page page(font);
    const std::array<std::string, 3> towns{latin(townOf(0)), latin(townOf(1)), latin(townOf(2))};
    std::vector<int> nodes;
    std::vector<std::string> kids;
    for (long first = 0; first < rows; first += kLinesPerPage) {
        const auto number = static_cast<std::size_t>(first / kLinesPerPage);
        if (number % kPagesPerNode == 0) {
            nodes.push_back(pdf.allocate());
            kids.emplace_back();
        }
        printPage(page, first, rows, towns);
        const int content = pdf.allocate();
        pdf.stream(content, "", page.text());
        const int object = pdf.allocate();
        pdf.object(object, "<</Type/Page/Parent " + std::to_string(nodes.back()) + " 0 R/Contents " +
                               std::to_string(content) + " 0 R>>");
        kids.back() += std::to_string(object) + " 0 R ";
    }
    std::string root;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        pdf.object(nodes[i], "<</Type/Pages/Parent " + std::to_string(kRoot) + " 0 R/Count " +
                                 std::to_string(std::count(kids[i].begin(), kids[i].end(), 'R')) + "/Kids[" +
                                 kids[i] + "]>>");
        root += std::to_string(nodes[i]) + " 0 R ";
    }
    pdf.object(kRoot, "<</Type/Pages/MediaBox[0 0 595.28 841.89]/Resources<</Font<</F0 " + std::to_string(kFont) +
                          " 0 R>>>>/Count " + std::to_string((rows + kLinesPerPage - 1) / kLinesPerPage) +
                          "/Kids[" + root + "]>>");
    pdf.object(kCatalog, "<</Type/Catalog/Pages " + std::to_string(kRoot) + " 0 R>>");
    embed(pdf, font);
    pdf.finish();
}

} // namespace

int main(int count, char** arguments) {
    if (count != 4) {
        std::fputs("usage: bare_list ROWS OUTPUT FONTFILE\n", stderr);
        return 2;
    }
    print(std::atol(arguments[1]), arguments[2], arguments[3]);
}
