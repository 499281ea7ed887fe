// Fonts: found through fontconfig, measured and shaped with HarfBuzz, embedded as subsets.
#pragma once

#include "druckwerk/common/font_request.h"
#include "druckwerk/pdf/pdf_output.h"
#include "values/text.h"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

struct hb_face_t;
struct hb_font_t;

namespace kvtdruck::druckwerk {

/// A picture of a character (an emoji), placed as an image. Lengths are in ems.
struct GlyphPicture {
    int image = 0; ///< number of the image in the document's resources
    double left = 0, bottom = 0, width = 0, height = 0;
};

/// One font within one document: what of it was used gets codes of its own, from 1, in the order of first use. A
/// code stands for a glyph and the text it shows, so that text taken from the document is exactly what was printed.
class Face {
  public:
    /// A character that needs no shaping: its code as bytes of a PDF string, and its advance in font units.
    struct Plain {
        std::array<char, 4> bytes{};
        std::uint8_t size = 0;
        bool known = false;
        bool usable = false;
        std::int16_t advance = 0;
    };

    /// nullptr where the file can't be used.
    static std::unique_ptr<Face> open(const std::string& file, int index, int number);
    ~Face();

    int number() const { return number_; }
    double unitsPerEm() const { return unitsPerEm_; }
    bool hasPictures() const { return hasPictures_; }
    hb_font_t* font() const { return font_; }

    /// The character, if it stands for itself in left-to-right text of this font, else nullptr.
    const Plain* plain(char16_t c) {
        const std::size_t index = plainIndex(c);
        if (index >= plain_.size())
            return nullptr;
        Plain& found = plain_[index];
        if (!found.known)
            learn(c, found);
        return found.usable ? &found : nullptr;
    }
    /// How much closer (negative) or wider two neighbouring plain characters stand, in font units.
    int kerning(char16_t left, char16_t right) {
        if (left < 128 && right < 128) {
            std::int16_t& kerning = asciiKerning_[left * 128U + right];
            return kerning != kUnknown ? kerning : kerning = measureKerning(left, right);
        }
        const auto [entry, fresh] = kerning_.try_emplace(static_cast<std::uint32_t>(left) << 16 | right);
        if (fresh)
            entry->second = measureKerning(left, right);
        return entry->second;
    }

    bool hasGlyph(char32_t c) const;
    /// The code that shows `glyph` for `text`.
    std::uint16_t codeOf(std::uint32_t glyph, StringView text);

    /// Writes the font, with what was used of it, as the object `number`.
    void embed(PdfOutput& output, int object) const;
    bool isUsed() const { return !codes_.empty(); }

  private:
    struct Code {
        std::uint32_t glyph;
        String text;
    };
    static constexpr std::int16_t kUnknown = INT16_MIN;
    static constexpr std::size_t kLatinEnd = 0x250;
    static constexpr std::size_t kPunctuationBegin = 0x2010;
    static constexpr std::size_t kPunctuationEnd = 0x20D0;

    static std::size_t plainIndex(char16_t c) {
        return c < kLatinEnd                                   ? c
               : c >= kPunctuationBegin && c < kPunctuationEnd ? c - kPunctuationBegin + kLatinEnd
                                                               : SIZE_MAX;
    }
    Face(hb_face_t* face, int number);
    void learn(char16_t c, Plain& plain);
    std::int16_t measureKerning(char16_t left, char16_t right) const;
    std::string subset(std::vector<std::uint16_t>& glyphOfCode) const;
    std::string descriptor(const std::string& name, int fontFile) const;
    std::string widths() const;
    std::string toUnicode() const;
    std::string postScriptName() const;

    hb_face_t* face_;
    hb_font_t* font_;
    int number_;
    double unitsPerEm_;
    bool hasPictures_;
    std::array<Plain, kLatinEnd + kPunctuationEnd - kPunctuationBegin> plain_{};
    std::array<std::int16_t, std::size_t{128} * 128> asciiKerning_;
    std::unordered_map<std::uint32_t, std::int16_t> kerning_;
    std::vector<Code> codes_;
    std::map<std::pair<std::uint32_t, String>, std::uint16_t> codeByText_;
};

/// A stretch of text in one font and on one height.
struct ShapedRun {
    Face* face = nullptr;
    std::string
        glyphs; ///< "[(…)-20(…)", the operand of TJ without its end; where `kerned` is false, "[" is not needed
    bool kerned = false;
    double width = 0;                      ///< in ems
    double rise = 0;                       ///< in ems
    const GlyphPicture* picture = nullptr; ///< drawn in the place of the glyphs, which then are blank
};

/// One line of text, ready to be placed; it can be used again and again.
class ShapedText {
  public:
    double width = 0; ///< in ems
    std::size_t count = 0;
    const ShapedRun& run(std::size_t i) const { return runs_[i]; }

    void clear() {
        count = 0;
        width = 0;
    }
    ShapedRun& add(Face& face) {
        if (count == runs_.size())
            runs_.emplace_back();
        ShapedRun& run = runs_[count++];
        run.face = &face;
        run.glyphs.assign("[(");
        run.kerned = false;
        run.width = run.rise = 0;
        run.picture = nullptr;
        return run;
    }
    void dropLast() { --count; }

  private:
    std::vector<ShapedRun> runs_;
};

/// The fonts of one document.
class FontLibrary {
  public:
    using Warn = std::function<void(const std::string&)>;

    FontLibrary(PdfOutput& output, Warn warn);
    ~FontLibrary();

    /// The face that is installed for `request`, or its substitute (with a warning). Raises a Fault where there is
    /// no font at all.
    Face& face(const FontRequest& request);

    /// Sets `text` as one line. Line ends and control characters are taken as blanks.
    void shape(StringView text, Face& face, ShapedText& out);

    /// Width of `text` in ems.
    double measure(StringView text, Face& face);

    /// Writes all fonts that were used; gives the entries of the resource dictionaries /Font and /XObject.
    std::string embedFonts();
    std::string imageResources() const;

  private:
    struct Sorted; // fontconfig's list of all fonts, in order of likeness
    static bool shapePlainly(StringView text, Face& face, ShapedText& out);
    void shapeFully(StringView text, Face& face, ShapedText& out);
    struct TextRun;
    std::vector<TextRun> splitRuns(const std::u32string& text, Face& face);
    static void orderAsSeen(std::vector<TextRun>& runs);
    void shapeRun(const std::u32string& text, const TextRun& characters, Face& base, ShapedText& out);
    static void appendPicture(ShapedRun& run, const GlyphPicture* glyphPicture, Face& base, StringView text);
    static void appendGlyph(ShapedRun& run, std::uint32_t glyph, double offset, double advance, StringView text);
    Face& faceFor(char32_t c, Face& preferred);
    std::pair<Face*, std::string> firstWith(char32_t c, bool picturesOnly);
    Face* open(const std::string& file, int index);
    const GlyphPicture* picture(Face& face, std::uint32_t glyph);

    PdfOutput& output_;
    Warn warn_;
    std::map<FontRequest, Face*> byRequest_;
    std::map<std::pair<std::string, int>, std::unique_ptr<Face>> byFile_;
    std::vector<Face*> faces_;
    std::unique_ptr<Sorted> sorted_;
    std::map<char32_t, Face*> fallbacks_;
    std::map<std::pair<Face*, std::uint32_t>, std::unique_ptr<GlyphPicture>> pictures_;
    std::vector<int> images_;
    ShapedText measured_;
};

} // namespace kvtdruck::druckwerk
