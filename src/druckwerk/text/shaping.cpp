// Text into glyphs: plain text of one font directly, anything else by direction, script and font.
#include "druckwerk/common/deleter.h"
#include "druckwerk/pdf/pdf_syntax.h"
#include "druckwerk/text/font_library.h"
#include "values/code_points.h"

#include <algorithm>
#include <cstring>
#include <fribidi.h>
#include <hb.h>
#include <new>
#include <optional>
#include <set>
#include <span>

namespace kvtdruck::druckwerk {

namespace {

using Buffer = std::unique_ptr<hb_buffer_t, Deleter<hb_buffer_destroy>>;

void appendAdjustment(ShapedRun& run, double ems) {
    std::string adjustment = ")";
    appendNumber(adjustment, -ems * kPdfUnits);
    adjustment += '(';
    run.append(adjustment);
}

void appendGlyphCode(ShapedRun& run, std::uint16_t code) {
    std::string bytes;
    appendCode(bytes, code);
    run.append(bytes);
}

/// Appends any plain character behind `previous`; gives how far it advances, or nothing where it is not plain.
std::optional<int> appendPlainly(Face& face, char16_t previous, char16_t c, ShapedRun& run) {
    const Face::Plain* plain = face.plain(c);
    if (plain == nullptr)
        return std::nullopt;
    const int kerning = face.kerning(previous, c);
    if (kerning != 0) {
        appendAdjustment(run, kerning / face.unitsPerEm());
        run.kerned = true;
    }
    run.append({plain->bytes.data(), plain->size});
    return kerning + plain->advance;
}

bool shapePlainly(StringView text, Face& face, ShapedText& out) {
    out.clear();
    ShapedRun& run = out.add(face);
    int advance = 0;
    char16_t previous = 0;
    for (const char16_t *c = text.data(), *const end = c + text.size(); c != end;) {
        // Most characters are met again, and in a pair that is not kerned: they are written where there is room for
        // all.
        char* at = run.room(static_cast<std::size_t>(end - c) * sizeof(Face::Plain::bytes));
        for (; c != end; ++c) {
            const Face::Plain* plain = face.unkerned(previous, *c);
            if (plain == nullptr)
                break;
            std::memcpy(at, plain->bytes.data(), sizeof(Face::Plain::bytes));
            at += plain->size;
            advance += plain->advance;
            previous = *c;
        }
        run.take(at);
        if (c == end)
            break;
        const auto added = appendPlainly(face, previous, *c, run);
        if (!added)
            return false;
        advance += *added;
        previous = *c++;
    }
    run.width = out.width = advance / face.unitsPerEm();
    run.end();
    return true;
}

/// UTF-32 of `text`; what is no character becomes U+FFFD, control characters become blanks.
std::u32string codePoints(StringView text) {
    std::u32string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto [c, units] = codePointAt(text, i);
        i += units;
        if (isSurrogate(c))
            out += U'\uFFFD';
        else
            out += c < 0x20 || c == 0x7F || c == 0x2028 || c == 0x2029 ? U' ' : c;
    }
    return out;
}

/// The bidirectional level of each character.
std::vector<FriBidiLevel> embeddingLevels(const std::u32string& text) {
    const auto length = static_cast<FriBidiStrIndex>(text.size());
    std::vector<FriBidiCharType> types(text.size());
    std::vector<FriBidiBracketType> brackets(text.size());
    std::vector<FriBidiLevel> levels(text.size());
    const auto* characters = reinterpret_cast<const FriBidiChar*>(text.data());
    fribidi_get_bidi_types(characters, length, types.data());
    fribidi_get_bracket_types(characters, length, types.data(), brackets.data());
    FriBidiParType direction = FRIBIDI_PAR_ON;
    if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), length, &direction, levels.data()) == 0)
        throw std::bad_alloc();
    return levels;
}

/// Characters begin to end of one direction, script and font.
struct TextRun {
    std::size_t begin, end;
    FriBidiLevel level;
    Face* face;
    bool rightToLeft() const { return (level & 1) != 0; }
};

std::vector<TextRun> splitRuns(FontLibrary& fonts, const std::u32string& text, Face& face) {
    const auto levels = embeddingLevels(text);
    std::vector<TextRun> runs;
    hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
    hb_script_t currentScript = HB_SCRIPT_COMMON;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const hb_script_t script = hb_unicode_script(unicode, text[i]);
        const bool inherits = script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
        // What joins the character before it stays in its font.
        const bool joins =
            !runs.empty() &&
            (isIgnorable(text[i]) || (script == HB_SCRIPT_INHERITED && runs.back().face->hasGlyph(text[i])));
        Face* const wanted = joins ? runs.back().face : &fonts.faceFor(text[i], face);
        const bool fits = !runs.empty() && runs.back().level == levels[i] && runs.back().face == wanted &&
                          (inherits || currentScript == HB_SCRIPT_COMMON || script == currentScript);
        if (fits)
            runs.back().end = i + 1;
        else
            runs.push_back({i, i + 1, levels[i], wanted});
        if (!inherits)
            currentScript = script;
        else if (!fits)
            currentScript = HB_SCRIPT_COMMON;
    }
    return runs;
}

/// Rule L2 of the bidirectional algorithm (Unicode Standard Annex 9): runs are reversed from the highest level down
/// to the lowest odd one.
void orderAsSeen(std::vector<TextRun>& runs) {
    FriBidiLevel highest = 0;
    for (const TextRun& run : runs)
        highest = std::max(highest, run.level);
    for (FriBidiLevel level = highest; level > 0; --level)
        for (auto begin = runs.begin(); begin != runs.end();) {
            begin = std::find_if(begin, runs.end(), [&](const TextRun& run) { return run.level >= level; });
            const auto end = std::find_if(begin, runs.end(), [&](const TextRun& run) { return run.level < level; });
            std::reverse(begin, end);
            begin = end;
        }
}

/// Gives out the text of each cluster of glyphs once, with the first glyph of the cluster.
class ClusterTexts {
  public:
    ClusterTexts(const std::u32string& text, std::size_t end, std::span<const hb_glyph_info_t> glyphs)
        : text_(text), end_(end) {
        for (const auto& glyph : glyphs)
            begins_.insert(glyph.cluster);
    }

    String take(std::size_t cluster) {
        String taken;
        if (!shown_.insert(cluster).second)
            return taken;
        const auto next = begins_.upper_bound(cluster);
        for (std::size_t i = cluster; i < (next == begins_.end() ? end_ : *next); ++i)
            appendUtf16(taken, text_[i]);
        return taken;
    }

  private:
    const std::u32string& text_;
    std::size_t end_;
    std::set<std::size_t> begins_;
    std::set<std::size_t> shown_;
};

/// The glyph that is drawn where the font lacks a character: the one that fonts have for it is no glyph that a
/// document may name (ISO 19005-3, 6.2.11.8). 0 where the font has nothing at all.
hb_codepoint_t standIn(hb_font_t* font) {
    for (const char32_t c : {U'\uFFFD', U'\u25A1', U'?', U' '})
        if (hb_codepoint_t glyph = 0; hb_font_get_nominal_glyph(font, c, &glyph) != 0)
            return glyph;
    return 0;
}

/// The picture's text is carried by a blank of the font around it.
void appendPicture(ShapedRun& run, const GlyphPicture* glyphPicture, Face& base, StringView text) {
    hb_codepoint_t blank = 0;
    hb_font_get_nominal_glyph(base.font(), U' ', &blank);
    run.face = &base;
    run.picture = glyphPicture;
    if (blank != 0)
        appendGlyphCode(run, base.codeOf(blank, text));
}

void appendGlyph(ShapedRun& run, std::uint32_t glyph, double offset, double advance, StringView text) {
    Face& face = *run.face;
    const double surplus = advance - hb_font_get_glyph_h_advance(face.font(), glyph) / face.unitsPerEm();
    if (offset != 0)
        appendAdjustment(run, offset);
    appendGlyphCode(run, face.codeOf(glyph, text));
    if (surplus - offset != 0)
        appendAdjustment(run, surplus - offset);
    run.kerned = run.kerned || offset != 0 || surplus != 0;
}

void shapeRun(FontLibrary& fonts, const std::u32string& text, const TextRun& characters, Face& base,
              ShapedText& out) {
    Face& face = *characters.face;
    const Buffer buffer(hb_buffer_create());
    hb_buffer_add_utf32(buffer.get(), reinterpret_cast<const std::uint32_t*>(text.data()),
                        static_cast<int>(text.size()), static_cast<unsigned>(characters.begin),
                        static_cast<int>(characters.end - characters.begin));
    hb_buffer_set_direction(buffer.get(), characters.rightToLeft() ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_guess_segment_properties(buffer.get());
    hb_shape(face.font(), buffer.get(), nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer.get(), &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer.get(), &count);

    ClusterTexts texts(text, characters.end, {glyphs, count});
    ShapedRun* run = nullptr;
    for (unsigned i = 0; i < count; ++i) {
        const std::uint32_t glyph = glyphs[i].codepoint != 0 ? glyphs[i].codepoint : standIn(face.font());
        if (glyph == 0)
            continue;
        const GlyphPicture* glyphPicture = face.hasPictures() ? fonts.picture(face, glyph) : nullptr;
        const double rise = positions[i].y_offset / face.unitsPerEm();
        if (run == nullptr || glyphPicture != nullptr || run->picture != nullptr || run->rise != rise) {
            run = &out.add(face);
            run->rise = rise;
        }
        const auto units =
            glyphs[i].codepoint != 0 ? positions[i].x_advance : hb_font_get_glyph_h_advance(face.font(), glyph);
        const double advance = units / face.unitsPerEm();
        out.width += advance;
        run->width += advance;
        if (face.hasPictures())
            appendPicture(*run, glyphPicture, base, texts.take(glyphs[i].cluster));
        else
            appendGlyph(*run, glyph, positions[i].x_offset / face.unitsPerEm(), advance,
                        texts.take(glyphs[i].cluster));
    }
}

/// Text in any script: split by writing direction, script and the font that has the characters.
void shapeFully(FontLibrary& fonts, StringView utf16, Face& face, ShapedText& out) {
    out.clear();
    const std::u32string text = codePoints(utf16);
    if (text.empty())
        return;
    auto runs = splitRuns(fonts, text, face);
    orderAsSeen(runs);
    for (const TextRun& run : runs)
        shapeRun(fonts, text, run, face, out);
    for (std::size_t i = 0; i < out.count; ++i)
        out.run(i).end();
}

} // namespace

void FontLibrary::shape(StringView text, Face& face, ShapedText& out) {
    if (!shapePlainly(text, face, out))
        shapeFully(*this, text, face, out);
}

} // namespace kvtdruck::druckwerk
