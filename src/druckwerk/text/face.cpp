#include "druckwerk/text/face.h"

#include "druckwerk/common/deleter.h"

#include <algorithm>
#include <hb-ot.h>
#include <hb.h>

namespace kvtdruck::druckwerk {

namespace {

using Buffer = std::unique_ptr<hb_buffer_t, Deleter<hb_buffer_destroy>>;
using Blob = std::unique_ptr<hb_blob_t, Deleter<hb_blob_destroy>>;

} // namespace

bool isIgnorable(char32_t c) {
    return c == 0xAD || (c >= 0x200B && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2060 && c <= 0x206F) || (c >= 0xFE00 && c <= 0xFE0F) || c == 0xFEFF ||
           (c >= 0xE0000 && c <= 0xE0FFF);
}

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

Face::Face(hb_face_t* face, int number)
    : face_(face), font_(hb_font_create(face)), number_(number), unitsPerEm_(hb_face_get_upem(face)),
      hasPictures_(hb_ot_color_has_png(face) != 0) {
    latin1Kerning_.fill(kUnknown);
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
    plain.state = Plain::State::Unusable;
    hb_codepoint_t glyph = 0;
    if (hasPictures_ || c < 0x20 || (c >= 0x7F && c < 0xA0) || isIgnorable(c) ||
        hb_font_get_nominal_glyph(font_, c, &glyph) == 0)
        return;
    plain.state = Plain::State::Usable;
    std::string bytes;
    appendCode(bytes, codeOf(glyph, StringView(&c, 1)));
    plain.size = static_cast<std::uint8_t>(bytes.copy(plain.bytes.data(), plain.bytes.size()));
    plain.advance = static_cast<std::int16_t>(hb_font_get_glyph_h_advance(font_, glyph));
}

int Face::shapedAdvance(StringView text) const {
    static const std::array<hb_feature_t, 3> kNoLigatures = {
        {{HB_TAG('l', 'i', 'g', 'a'), 0, 0, HB_FEATURE_GLOBAL_END},
         {HB_TAG('c', 'l', 'i', 'g'), 0, 0, HB_FEATURE_GLOBAL_END},
         {HB_TAG('c', 'a', 'l', 't'), 0, 0, HB_FEATURE_GLOBAL_END}}};
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
}

std::int16_t Face::measureKerning(char16_t left, char16_t right) {
    if (left == 0)
        return 0;
    const auto alone = [this](char16_t c) {
        std::int16_t& advance = plain_[plainIndex(c)].alone;
        return advance != kUnknown ? advance : advance = static_cast<std::int16_t>(shapedAdvance({&c, 1}));
    };
    const std::array<char16_t, 2> pair{left, right};
    return static_cast<std::int16_t>(shapedAdvance({pair.data(), pair.size()}) - alone(left) - alone(right));
}

} // namespace kvtdruck::druckwerk
