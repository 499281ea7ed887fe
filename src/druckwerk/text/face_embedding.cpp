// A face in the document: what of it was used, as a subset with its own codes.
#include "druckwerk/common/deleter.h"
#include "druckwerk/common/fault.h"
#include "druckwerk/pdf/pdf_syntax.h"
#include "druckwerk/text/face.h"

#include <algorithm>
#include <hb-ot.h>
#include <hb-subset.h>
#include <hb.h>

namespace kvtdruck::druckwerk {

namespace {

using Blob = std::unique_ptr<hb_blob_t, Deleter<hb_blob_destroy>>;
using SubsetInput = std::unique_ptr<hb_subset_input_t, Deleter<hb_subset_input_destroy>>;
using SubsetPlan = std::unique_ptr<hb_subset_plan_t, Deleter<hb_subset_plan_destroy>>;

/// What the code of `text` is mapped to. Archives want something for each code, and not what marks the order of
/// bytes or is no character (ISO 19005-3, 6.2.11.7.2). A glyph whose text stands with the glyph before it joins
/// that one.
String mapped(StringView text) {
    constexpr char16_t kWordJoiner = 0x2060;
    String out(text);
    for (char16_t& c : out)
        c = c == 0xFEFF ? kWordJoiner : c >= 0xFFFE ? u'\uFFFD' : c;
    return out.empty() ? String(1, kWordJoiner) : out;
}

std::string hexadecimal(StringView text) {
    const std::string withMark = pdfText(text);
    return withMark.substr(5, withMark.size() - 6);
}

} // namespace

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
    for (std::size_t i = 0; i < codes_.size(); ++i) {
        const auto code = static_cast<char16_t>(i + 1);
        entries.push_back("<" + hexadecimal(StringView(&code, 1)) + "><" + hexadecimal(mapped(codes_[i].text)) +
                          ">\n");
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

} // namespace kvtdruck::druckwerk
