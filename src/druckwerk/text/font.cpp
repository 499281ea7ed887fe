#include "druckwerk/text/font.h"

#include "druckwerk/common/deleter.h"
#include "druckwerk/common/fault.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fontconfig/fontconfig.h>
#include <fribidi.h>
#include <hb-ot.h>
#include <hb-subset.h>
#include <hb.h>
#include <new>
#include <optional>
#include <png.h>
#include <set>
#include <span>
#include <strings.h>

namespace kvtdruck::druckwerk {

namespace {

using Pattern = std::unique_ptr<FcPattern, Deleter<FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Deleter<FcFontSetDestroy>>;
using Buffer = std::unique_ptr<hb_buffer_t, Deleter<hb_buffer_destroy>>;
using Blob = std::unique_ptr<hb_blob_t, Deleter<hb_blob_destroy>>;
using SubsetInput = std::unique_ptr<hb_subset_input_t, Deleter<hb_subset_input_destroy>>;
using SubsetPlan = std::unique_ptr<hb_subset_plan_t, Deleter<hb_subset_plan_destroy>>;

constexpr double kPdfUnits = 1000;

/// One code of the font as two bytes of a PDF string.
void appendCode(std::string& out, std::uint16_t code) {
    for (const auto byte : {static_cast<char>(code >> 8), static_cast<char>(code & 0xff)}) {
        if (byte == '(' || byte == ')' || byte == '\\' || byte == '\r') {
            out += '\\';
            out += byte == '\r' ? 'r' : byte;
        } else {
            out += byte;
        }
    }
}

void appendAdjustment(std::string& out, double ems) {
    out += ')';
    appendNumber(out, -ems * kPdfUnits);
    out += '(';
}

std::string hexadecimal(StringView text) {
    const std::string withMark = pdfText(text);
    return withMark.substr(5, withMark.size() - 6);
}

bool isIgnorable(char32_t c) {
    return c == 0xAD || (c >= 0x200B && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2060 && c <= 0x206F) || (c >= 0xFE00 && c <= 0xFE0F) || c == 0xFEFF ||
           (c >= 0xE0000 && c <= 0xE0FFF);
}

bool isEmoji(char32_t c) {
    return c >= 0x1F000 && c < 0x20000;
}

/// UTF-32 of `text`; what is no character becomes U+FFFD, control characters become blanks.
std::u32string codePoints(StringView text) {
    std::u32string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        const bool high = c >= 0xD800 && c < 0xDC00;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000)
            out += static_cast<char32_t>(0x10000U + ((c - 0xD800U) << 10) + (text[++i] - 0xDC00U));
        else if (c >= 0xD800 && c < 0xE000)
            out += U'\uFFFD';
        else
            out += c < 0x20 || c == 0x7F || c == 0x2028 || c == 0x2029 ? U' ' : char32_t{c};
    }
    return out;
}

void appendUtf16(String& out, char32_t c) {
    if (c >= 0x10000) {
        out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
        out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
        out += static_cast<char16_t>(c);
    }
}

std::string familyOf(FcPattern* pattern) {
    FcChar8* family = nullptr;
    FcPatternGetString(pattern, FC_FAMILY, 0, &family);
    return family == nullptr ? "?" : reinterpret_cast<const char*>(family);
}

bool hasFamily(FcPattern* pattern, const std::string& wanted) {
    FcChar8* family = nullptr;
    for (int i = 0; FcPatternGetString(pattern, FC_FAMILY, i, &family) == FcResultMatch; ++i)
        if (strcasecmp(reinterpret_cast<const char*>(family), wanted.c_str()) == 0)
            return true;
    return false;
}

bool isGeneric(const std::string& family) {
    static const std::set<std::string> kGeneric = {"sans-serif", "serif", "monospace", "sans", "system-ui"};
    return kGeneric.count(family) != 0;
}

/// Whether the font can be embedded: TrueType outlines, or pictures of characters.
bool isUsable(FcPattern* pattern, bool pictures) {
    FcChar8* format = nullptr;
    FcBool variable = FcFalse;
    FcBool color = FcFalse;
    FcPatternGetString(pattern, FC_FONTFORMAT, 0, &format);
    FcPatternGetBool(pattern, FC_VARIABLE, 0, &variable);
    FcPatternGetBool(pattern, FC_COLOR, 0, &color);
    return format != nullptr && std::strcmp(reinterpret_cast<const char*>(format), "TrueType") == 0 &&
           variable == FcFalse && (pictures || color == FcFalse);
}

Pattern patternFor(const FontRequest& request) {
    Pattern pattern(FcPatternCreate());
    for (const auto& family : request.families)
        FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, FcWeightFromOpenType(request.weight));
    FcPatternAddInteger(pattern.get(), FC_SLANT, request.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    return pattern;
}

std::pair<std::string, int> fileOf(FcPattern* pattern) {
    FcChar8* file = nullptr;
    int index = 0;
    FcPatternGetString(pattern, FC_FILE, 0, &file);
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    return {file == nullptr ? "" : reinterpret_cast<const char*>(file), index & 0xFFFF};
}

} // namespace

// --- One font
// ---------------------------------------------------------------------------------------------------------

Face::Face(hb_face_t* face, int number)
    : face_(face), font_(hb_font_create(face)), number_(number), unitsPerEm_(hb_face_get_upem(face)),
      hasPictures_(hb_ot_color_has_png(face) != 0) {
    asciiKerning_.fill(kUnknown);
}

Face::~Face() {
    hb_font_destroy(font_);
    hb_face_destroy(face_);
}

std::unique_ptr<Face> Face::open(const std::string& file, int index, int number) {
    const Blob blob(hb_blob_create_from_file_or_fail(file.c_str()));
    if (!blob)
        return nullptr;
    hb_face_t* face = hb_face_create(blob.get(), static_cast<unsigned>(index));
    if (hb_face_get_glyph_count(face) == 0) {
        hb_face_destroy(face);
        return nullptr;
    }
    return std::unique_ptr<Face>(new Face(face, number));
}

bool Face::hasGlyph(char32_t c) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_nominal_glyph(font_, c, &glyph) != 0;
}

std::uint16_t Face::codeOf(std::uint32_t glyph, StringView text) {
    const auto [entry, fresh] = codeByText_.try_emplace({glyph, String(text)});
    if (fresh) {
        if (codes_.size() >=
            0xFFFE) // a document with more different characters than a font has codes: the last ones share
            return entry->second = 1;
        codes_.push_back({glyph, String(text)});
        entry->second = static_cast<std::uint16_t>(codes_.size());
    }
    return entry->second;
}

void Face::learn(char16_t c, Plain& plain) {
    plain.known = true;
    hb_codepoint_t glyph = 0;
    if (hasPictures_ || c < 0x20 || (c >= 0x7F && c < 0xA0) || isIgnorable(c) ||
        hb_font_get_nominal_glyph(font_, c, &glyph) == 0)
        return;
    plain.usable = true;
    std::string bytes;
    appendCode(bytes, codeOf(glyph, StringView(&c, 1)));
    plain.size = static_cast<std::uint8_t>(bytes.copy(plain.bytes.data(), plain.bytes.size()));
    plain.advance = static_cast<std::int16_t>(hb_font_get_glyph_h_advance(font_, glyph));
}

std::int16_t Face::measureKerning(char16_t left, char16_t right) const {
    static const std::array<hb_feature_t, 3> kNoLigatures = {
        {{HB_TAG('l', 'i', 'g', 'a'), 0, 0, HB_FEATURE_GLOBAL_END},
         {HB_TAG('c', 'l', 'i', 'g'), 0, 0, HB_FEATURE_GLOBAL_END},
         {HB_TAG('c', 'a', 'l', 't'), 0, 0, HB_FEATURE_GLOBAL_END}}};
    const auto advance = [&](const std::u16string& text) {
        const Buffer buffer(hb_buffer_create());
        hb_buffer_add_utf16(buffer.get(), reinterpret_cast<const std::uint16_t*>(text.data()),
                            static_cast<int>(text.size()), 0, -1);
        hb_buffer_set_direction(buffer.get(), HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer.get(), HB_SCRIPT_LATIN);
        hb_shape(font_, buffer.get(), kNoLigatures.data(), kNoLigatures.size());
        unsigned count = 0;
        const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer.get(), &count);
        int sum = 0;
        for (unsigned i = 0; i < count; ++i)
            sum += positions[i].x_advance;
        return sum;
    };
    return static_cast<std::int16_t>(advance({left, right}) - advance({left}) - advance({right}));
}

std::string Face::subset(std::vector<std::uint16_t>& glyphOfCode) const {
    static constexpr std::array<hb_tag_t, 9> kKept = {
        HB_TAG('g', 'l', 'y', 'f'), HB_TAG('l', 'o', 'c', 'a'), HB_TAG('h', 'e', 'a', 'd'),
        HB_TAG('h', 'h', 'e', 'a'), HB_TAG('h', 'm', 't', 'x'), HB_TAG('m', 'a', 'x', 'p'),
        HB_TAG('c', 'v', 't', ' '), HB_TAG('f', 'p', 'g', 'm'), HB_TAG('p', 'r', 'e', 'p')};
    const SubsetInput input(hb_subset_input_create_or_fail());
    hb_subset_input_set_flags(input.get(), HB_SUBSET_FLAGS_NO_HINTING);
    hb_set_t* dropped = hb_subset_input_set(input.get(), HB_SUBSET_SETS_DROP_TABLE_TAG);
    std::array<hb_tag_t, 64> tags{};
    unsigned count = tags.size();
    hb_face_get_table_tags(face_, 0, &count, tags.data());
    for (unsigned i = 0; i < count; ++i)
        if (std::find(kKept.begin(), kKept.end(), tags[i]) == kKept.end())
            hb_set_add(dropped, tags[i]);
    hb_set_t* glyphs = hb_subset_input_glyph_set(input.get());
    for (const Code& code : codes_)
        hb_set_add(glyphs, code.glyph);
    const SubsetPlan plan(hb_subset_plan_create_or_fail(face_, input.get()));
    hb_face_t* reduced = plan ? hb_subset_plan_execute_or_fail(plan.get()) : nullptr;
    if (reduced == nullptr)
        throw Fault(kOutputFailed, "Die Schrift „" + postScriptName() + "“ kann nicht eingebettet werden");
    const hb_map_t* mapping = hb_subset_plan_old_to_new_glyph_mapping(plan.get());
    glyphOfCode.assign(1, 0);
    for (const Code& code : codes_)
        glyphOfCode.push_back(static_cast<std::uint16_t>(hb_map_get(mapping, code.glyph)));
    const Blob blob(hb_face_reference_blob(reduced));
    hb_face_destroy(reduced);
    unsigned size = 0;
    const char* data = hb_blob_get_data(blob.get(), &size);
    return {data, size};
}

std::string Face::postScriptName() const {
    std::array<char, 128> name{};
    unsigned size = name.size();
    hb_ot_name_get_utf8(face_, HB_OT_NAME_ID_POSTSCRIPT_NAME, HB_LANGUAGE_INVALID, &size, name.data());
    std::string plain;
    for (const char c : std::string(name.data()))
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-')
            plain += c;
    return plain.empty() ? "Font" : plain;
}

std::string Face::descriptor(const std::string& name, int fontFile) const {
    const double scale = kPdfUnits / unitsPerEm_;
    const auto metric = [&](hb_ot_metrics_tag_t tag, double fallback) {
        hb_position_t position = 0;
        return hb_ot_metrics_get_position(font_, tag, &position) != 0 ? position * scale : fallback;
    };
    const Blob head(hb_face_reference_table(face_, HB_TAG('h', 'e', 'a', 'd')));
    unsigned size = 0;
    const auto* data = reinterpret_cast<const unsigned char*>(hb_blob_get_data(head.get(), &size));
    std::string out = "<</Type/FontDescriptor/FontName/" + name + "/Flags 4/FontBBox[";
    for (unsigned i = 36; i < 44; i += 2) { // xMin, yMin, xMax, yMax (OpenType, head table)
        const auto corner = size >= 44 ? static_cast<std::int16_t>(data[i] << 8 | data[i + 1]) : std::int16_t{0};
        appendNumber(out, corner * scale);
        out += ' ';
    }
    out += "]/ItalicAngle ";
    appendNumber(out, hb_style_get_value(font_, HB_STYLE_TAG_SLANT_ANGLE));
    out += "/Ascent ";
    appendNumber(out, metric(HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER, 900));
    out += "/Descent ";
    appendNumber(out, metric(HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER, -200));
    out += "/CapHeight ";
    appendNumber(out, metric(HB_OT_METRICS_TAG_CAP_HEIGHT, 700));
    return out + "/StemV 80/FontFile2 " + std::to_string(fontFile) + " 0 R>>";
}

std::string Face::widths() const {
    std::string out = "/W[1[";
    for (const Code& code : codes_) {
        appendNumber(out, hb_font_get_glyph_h_advance(font_, code.glyph) * kPdfUnits / unitsPerEm_);
        out += ' ';
    }
    return out + "]]";
}

std::string Face::toUnicode() const {
    std::string out = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                      "/CIDSystemInfo<</Registry(Adobe)/Ordering(UCS)/Supplement 0>>def\n"
                      "/CMapName/Adobe-Identity-UCS def\n/CMapType 2 def\n"
                      "1 begincodespacerange\n<0000><FFFF>\nendcodespacerange\n";
    constexpr std::size_t kBlock = 100; // the most entries that a block may have
    std::vector<std::string> entries;
    for (std::size_t i = 0; i < codes_.size(); ++i)
        if (!codes_[i].text.empty()) {
            const auto code = static_cast<char16_t>(i + 1);
            entries.push_back("<" + hexadecimal(StringView(&code, 1)) + "><" + hexadecimal(codes_[i].text) + ">\n");
        }
    for (std::size_t begin = 0; begin < entries.size(); begin += kBlock) {
        const std::size_t end = std::min(begin + kBlock, entries.size());
        out += std::to_string(end - begin) + " beginbfchar\n";
        for (std::size_t i = begin; i < end; ++i)
            out += entries[i];
        out += "endbfchar\n";
    }
    return out + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

void Face::embed(PdfOutput& output, int object) const {
    std::vector<std::uint16_t> glyphOfCode;
    const std::string file = subset(glyphOfCode);
    const auto tagSeed = std::hash<std::string>()(file); // the tag tells subsets of one font apart
    std::string name;
    for (auto rest = tagSeed; name.size() < 6; rest /= 26)
        name += static_cast<char>('A' + rest % 26);
    name += "+" + postScriptName();

    std::string map;
    for (const std::uint16_t glyph : glyphOfCode) {
        map += static_cast<char>(glyph >> 8);
        map += static_cast<char>(glyph & 0xff);
    }
    const int fontFile = output.allocate();
    const int descriptorObject = output.allocate();
    const int mapObject = output.allocate();
    const int descendant = output.allocate();
    const int unicode = output.allocate();
    const auto reference = [](int number) { return std::to_string(number) + " 0 R"; };
    output.writeStream(fontFile, "/Length1 " + std::to_string(file.size()), file);
    output.writeObject(descriptorObject, descriptor(name, fontFile));
    output.writeStream(mapObject, "", map);
    output.writeObject(descendant,
                       "<</Type/Font/Subtype/CIDFontType2/BaseFont/" + name +
                           "/CIDSystemInfo<</Registry(Adobe)/Ordering(Identity)/Supplement 0>>/FontDescriptor " +
                           reference(descriptorObject) + "/DW 0" + widths() + "/CIDToGIDMap " +
                           reference(mapObject) + ">>");
    output.writeStream(unicode, "", toUnicode());
    output.writeObject(object, "<</Type/Font/Subtype/Type0/BaseFont/" + name +
                                   "/Encoding/Identity-H/DescendantFonts[" + reference(descendant) +
                                   "]/ToUnicode " + reference(unicode) + ">>");
}

// --- The fonts of a document
// ------------------------------------------------------------------------------------------

struct FontLibrary::Sorted {
    FontSet fonts;
};

FontLibrary::FontLibrary(PdfOutput& output, Warn warn) : output_(output), warn_(std::move(warn)) {}
FontLibrary::~FontLibrary() = default;

Face* FontLibrary::open(const std::string& file, int index) {
    const auto [entry, fresh] = byFile_.try_emplace({file, index});
    if (fresh) {
        entry->second = Face::open(file, index, static_cast<int>(faces_.size()));
        if (entry->second)
            faces_.push_back(entry->second.get());
    }
    return entry->second.get();
}

Face& FontLibrary::face(const FontRequest& request) {
    const auto [entry, fresh] = byRequest_.try_emplace(request);
    if (!fresh && entry->second != nullptr)
        return *entry->second;
    const Pattern pattern = patternFor(request);
    FcResult result = FcResultNoMatch;
    Pattern match(FcFontMatch(nullptr, pattern.get(), &result));
    Face* face = nullptr;
    if (match && isUsable(match.get(), false)) {
        const auto [file, index] = fileOf(match.get());
        face = open(file, index);
    }
    if (face == nullptr) {
        const FontSet all(FcFontSort(nullptr, pattern.get(), FcTrue, nullptr, &result));
        for (int i = 0; face == nullptr && all && i < all->nfont; ++i) {
            if (!isUsable(all->fonts[i], false))
                continue;
            const auto [file, index] = fileOf(all->fonts[i]);
            face = open(file, index);
            match.reset(FcPatternDuplicate(all->fonts[i]));
        }
    }
    if (face == nullptr)
        throw Fault(kNoFont, "Es ist keine verwendbare Schrift installiert (gebraucht wird „" +
                                 (request.families.empty() ? "sans-serif" : request.families[0]) + "“)");
    if (!request.families.empty() && !isGeneric(request.families[0]) &&
        !hasFamily(match.get(), request.families[0]))
        warn_("Schrift „" + request.families[0] + "“ ist nicht installiert oder nicht einbettbar, ersetzt durch „" +
              familyOf(match.get()) + "“");
    return *(entry->second = face);
}

Face& FontLibrary::faceFor(char32_t c, Face& preferred) {
    if (isIgnorable(c) || preferred.hasGlyph(c))
        return preferred;
    const auto [entry, fresh] = fallbacks_.try_emplace(c);
    if (!fresh)
        return entry->second == nullptr ? preferred : *entry->second;
    if (!sorted_) {
        const Pattern pattern = patternFor({{"sans-serif"}, 400, false});
        FcResult result = FcResultNoMatch;
        sorted_ = std::make_unique<Sorted>();
        sorted_->fonts.reset(FcFontSort(nullptr, pattern.get(), FcFalse, nullptr, &result));
    }
    for (const bool picturesOnly : {true, false}) {
        if (picturesOnly && !isEmoji(c))
            continue;
        if (const auto [face, family] = firstWith(c, picturesOnly); face != nullptr) {
            warn_("Zeichen, die der Schrift fehlen, werden in „" + family + "“ gesetzt");
            return *(entry->second = face);
        }
    }
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "U+%04X", static_cast<unsigned>(c));
    warn_(std::string("Zeichen ") + name.data() + " fehlt in allen Schriften");
    return preferred;
}

/// The first of all fonts that has the character, and its name.
std::pair<Face*, std::string> FontLibrary::firstWith(char32_t c, bool picturesOnly) {
    for (int i = 0; sorted_->fonts && i < sorted_->fonts->nfont; ++i) {
        FcPattern* candidate = sorted_->fonts->fonts[i];
        FcCharSet* characters = nullptr;
        if (FcPatternGetCharSet(candidate, FC_CHARSET, 0, &characters) != FcResultMatch ||
            FcCharSetHasChar(characters, c) == FcFalse || !isUsable(candidate, true) ||
            (picturesOnly && isUsable(candidate, false)))
            continue;
        const auto [file, index] = fileOf(candidate);
        Face* face = open(file, index);
        if (face != nullptr && face->hasGlyph(c))
            return {face, familyOf(candidate)};
    }
    return {};
}

bool FontLibrary::shapePlainly(StringView text, Face& face, ShapedText& out) {
    out.clear();
    ShapedRun& run = out.add(face);
    int advance = 0;
    char16_t previous = 0;
    for (const char16_t c : text) {
        const Face::Plain* plain = face.plain(c);
        if (plain == nullptr)
            return false;
        if (previous != 0)
            if (const int kerning = face.kerning(previous, c); kerning != 0) {
                appendAdjustment(run.glyphs, kerning / face.unitsPerEm());
                run.kerned = true;
                advance += kerning;
            }
        run.glyphs.append(plain->bytes.data(), plain->size);
        advance += plain->advance;
        previous = c;
    }
    run.width = out.width = advance / face.unitsPerEm();
    return true;
}

void FontLibrary::shape(StringView text, Face& face, ShapedText& out) {
    if (!shapePlainly(text, face, out))
        shapeFully(text, face, out);
}

double FontLibrary::measure(StringView text, Face& face) {
    shape(text, face, measured_);
    return measured_.width;
}

namespace {

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

} // namespace

/// Characters begin to end of one direction, script and font.
struct FontLibrary::TextRun {
    std::size_t begin, end;
    FriBidiLevel level;
    Face* face;
    bool rightToLeft() const { return (level & 1) != 0; }
};

std::vector<FontLibrary::TextRun> FontLibrary::splitRuns(const std::u32string& text, Face& face) {
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
        Face* const wanted = joins ? runs.back().face : &faceFor(text[i], face);
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
void FontLibrary::orderAsSeen(std::vector<TextRun>& runs) {
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

/// Text in any script: split by writing direction, script and the font that has the characters.
void FontLibrary::shapeFully(StringView utf16, Face& face, ShapedText& out) {
    out.clear();
    const std::u32string text = codePoints(utf16);
    if (text.empty())
        return;
    auto runs = splitRuns(text, face);
    orderAsSeen(runs);
    for (const TextRun& run : runs)
        shapeRun(text, run, face, out);
}

namespace {

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

} // namespace

void FontLibrary::shapeRun(const std::u32string& text, const TextRun& characters, Face& base, ShapedText& out) {
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
        const std::uint32_t glyph = glyphs[i].codepoint;
        const GlyphPicture* glyphPicture = face.hasPictures() ? picture(face, glyph) : nullptr;
        const double rise = positions[i].y_offset / face.unitsPerEm();
        if (run == nullptr || glyphPicture != nullptr || run->picture != nullptr || run->rise != rise) {
            run = &out.add(face);
            run->rise = rise;
        }
        const double advance = positions[i].x_advance / face.unitsPerEm();
        out.width += advance;
        run->width += advance;
        if (face.hasPictures())
            appendPicture(*run, glyphPicture, base, texts.take(glyphs[i].cluster));
        else
            appendGlyph(*run, glyph, positions[i].x_offset / face.unitsPerEm(), advance,
                        texts.take(glyphs[i].cluster));
    }
}

/// The picture's text is carried by a blank of the font around it.
void FontLibrary::appendPicture(ShapedRun& run, const GlyphPicture* glyphPicture, Face& base, StringView text) {
    hb_codepoint_t blank = 0;
    hb_font_get_nominal_glyph(base.font(), U' ', &blank);
    run.face = &base;
    run.picture = glyphPicture;
    appendCode(run.glyphs, base.codeOf(blank, text));
}

void FontLibrary::appendGlyph(ShapedRun& run, std::uint32_t glyph, double offset, double advance, StringView text) {
    Face& face = *run.face;
    const double surplus = advance - hb_font_get_glyph_h_advance(face.font(), glyph) / face.unitsPerEm();
    if (offset != 0)
        appendAdjustment(run.glyphs, offset);
    appendCode(run.glyphs, face.codeOf(glyph, text));
    if (surplus - offset != 0)
        appendAdjustment(run.glyphs, surplus - offset);
    run.kerned = run.kerned || offset != 0 || surplus != 0;
}

namespace {

/// A picture's colours, three bytes a pixel, and how opaque each pixel is.
struct Pixels {
    unsigned width = 0;
    unsigned height = 0;
    std::string colors;
    std::string mask;
};

/// The picture of a glyph at 128 pixels an em; nothing where there is none that can be read, or it is beyond
/// measure.
std::optional<Pixels> pixelsOf(hb_font_t* font, std::uint32_t glyph) {
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

/// Where the picture stands: on the glyph's extents, or else as wide as its advance and a fifth below the line.
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

} // namespace

const GlyphPicture* FontLibrary::picture(Face& face, std::uint32_t glyph) {
    const auto [entry, fresh] = pictures_.try_emplace({&face, glyph});
    if (!fresh)
        return entry->second.get();
    const auto pixels = pixelsOf(face.font(), glyph);
    if (!pixels)
        return nullptr;
    const int mask = output_.allocate();
    const int image = output_.allocate();
    const std::string extent = "/Type/XObject/Subtype/Image/Width " + std::to_string(pixels->width) + "/Height " +
                               std::to_string(pixels->height) + "/BitsPerComponent 8";
    output_.writeStream(mask, extent + "/ColorSpace/DeviceGray", pixels->mask);
    output_.writeStream(image, extent + "/ColorSpace/DeviceRGB/SMask " + std::to_string(mask) + " 0 R",
                        pixels->colors);
    images_.push_back(image);
    entry->second = std::make_unique<GlyphPicture>();
    entry->second->image = static_cast<int>(images_.size()) - 1;
    place(*entry->second, face, glyph, *pixels);
    return entry->second.get();
}

std::string FontLibrary::embedFonts() {
    std::string resources;
    for (const Face* face : faces_)
        if (face->isUsed()) {
            const int object = output_.allocate();
            face->embed(output_, object);
            resources += "/F" + std::to_string(face->number()) + " " + std::to_string(object) + " 0 R";
        }
    return resources;
}

std::string FontLibrary::imageResources() const {
    std::string resources;
    for (std::size_t i = 0; i < images_.size(); ++i)
        resources += "/I" + std::to_string(i) + " " + std::to_string(images_[i]) + " 0 R";
    return resources;
}

} // namespace kvtdruck::druckwerk
