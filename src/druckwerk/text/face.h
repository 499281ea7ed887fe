// One font within one document, measured with HarfBuzz and embedded as a subset.
#pragma once

#include "druckwerk/pdf/pdf_output.h"
#include "values/text.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

struct hb_face_t;
struct hb_font_t;

namespace kvtdruck::druckwerk {

/// Whether the character shows nothing and may be missing in a font: joiners, marks of direction, soft hyphens,
/// variants.
bool isIgnorable(char32_t c);

/// Widths of glyphs are thousandths of an em in PDF.
inline constexpr double kPdfUnits = 1000;

/// One code of a font as two bytes of a PDF string.
void appendCode(std::string& out, std::uint16_t code);

/// One font within one document: what of it was used gets codes of its own, from 1, in the order of first use. A
/// code stands for a glyph and the text it shows, so that text taken from the document is exactly what was printed.
class Face {
    static constexpr std::int16_t kUnknown = INT16_MIN;

  public:
    /// A character that needs no shaping: its code as bytes of a PDF string, and its advance in font units.
    struct Plain {
        enum class State : std::uint8_t { Unknown, Usable, Unusable };
        std::array<char, 4> bytes{};
        std::int16_t advance = 0;
        std::int16_t alone = kUnknown; ///< its advance as it is shaped, known where a pair was measured
        std::uint8_t size = 0;
        State state = State::Unknown;
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
        if (found.state == Plain::State::Unknown)
            learn(c, found);
        return found.state == Plain::State::Usable ? &found : nullptr;
    }
    /// The plain character `c` where it is known that nothing moves it behind `previous` (0 at the beginning of a
    /// text), else nullptr: the short way for most characters.
    const Plain* unkerned(char16_t previous, char16_t c) const {
        const bool known = (previous | c) < kLatin1End && latin1Kerning_[previous * kLatin1End + c] == 0;
        return known ? &plain_[c] : nullptr;
    }
    /// How much closer (negative) or wider two neighbouring plain characters stand, in font units; 0 at the
    /// beginning of a text, where `left` is 0.
    int kerning(char16_t left, char16_t right) {
        if ((left | right) < kLatin1End) {
            std::int16_t& kerning = latin1Kerning_[left * kLatin1End + right];
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
    static constexpr std::size_t kLatin1End = 0x100;
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
    int shapedAdvance(StringView text) const;
    std::int16_t measureKerning(char16_t left, char16_t right);
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
    std::array<std::int16_t, kLatin1End * kLatin1End> latin1Kerning_; ///< known for plain characters alone
    std::unordered_map<std::uint32_t, std::int16_t> kerning_;
    std::vector<Code> codes_;
    std::map<std::pair<std::uint32_t, String>, std::uint16_t> codeByText_;
};

} // namespace kvtdruck::druckwerk
