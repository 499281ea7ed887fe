#include "druckwerk/text/font_library.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/text/glyph_picture.h"

#include <array>
#include <cstdio>
#include <set>

namespace kvtdruck::druckwerk {

namespace {

bool isGeneric(const std::string& family) {
    static const std::set<std::string> kGeneric = {"sans-serif", "serif", "monospace", "sans", "system-ui"};
    return kGeneric.count(family) != 0;
}

bool isEmoji(char32_t c) {
    return c >= 0x1F000 && c < 0x20000;
}

std::string nameOf(const FontFile& font) {
    return font.families.empty() ? "?" : font.families[0];
}

} // namespace

FontLibrary::FontLibrary(PdfOutput& output, Warn warn) : output_(output), warn_(std::move(warn)) {}
FontLibrary::~FontLibrary() = default;

Face* FontLibrary::open(const FontFile& font) {
    const auto [entry, fresh] = byFile_.try_emplace({font.file, font.index});
    if (fresh) {
        entry->second = Face::open(font.file, font.index, static_cast<int>(faces_.size()));
        if (entry->second)
            faces_.push_back(entry->second.get());
    }
    return entry->second.get();
}

Face& FontLibrary::face(const FontRequest& request) {
    const auto [entry, fresh] = byRequest_.try_emplace(request);
    if (!fresh && entry->second != nullptr)
        return *entry->second;
    const std::string wanted = request.families.empty() ? "sans-serif" : request.families[0];
    const bool found = installed_.findLike(request, [&, slot = &entry->second](const FontFile& font) {
        *slot = open(font);
        if (*slot != nullptr && !isGeneric(wanted) && !font.hasFamily(wanted))
            warn("Schrift „" + wanted + "“ ist nicht installiert oder nicht einbettbar, ersetzt durch „" +
                 nameOf(font) + "“");
        return *slot != nullptr;
    });
    if (!found)
        throw Fault(kNoFont, "Es ist keine verwendbare Schrift installiert (gebraucht wird „" + wanted + "“)");
    return *entry->second;
}

Face& FontLibrary::faceFor(char32_t c, Face& preferred) {
    if (isIgnorable(c) || preferred.hasGlyph(c))
        return preferred;
    const auto [entry, fresh] = fallbacks_.try_emplace(c);
    if (!fresh)
        return entry->second == nullptr ? preferred : *entry->second;
    for (const bool picturesOnly : {true, false}) {
        if (picturesOnly && !isEmoji(c))
            continue;
        const bool found = installed_.findWith(c, [&, slot = &entry->second](const FontFile& font) {
            Face* face = picturesOnly && !font.pictures ? nullptr : open(font);
            if (face == nullptr || !face->hasGlyph(c))
                return false;
            *slot = face;
            warn("Zeichen, die der Schrift fehlen, werden in „" + nameOf(font) + "“ gesetzt");
            return true;
        });
        if (found)
            return *entry->second;
    }
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "U+%04X", static_cast<unsigned>(c));
    warn(std::string("Zeichen ") + name.data() + " fehlt in allen Schriften");
    return preferred;
}

const GlyphPicture* FontLibrary::picture(Face& face, std::uint32_t glyph) {
    const auto [entry, fresh] = pictures_.try_emplace({&face, glyph});
    if (!fresh)
        return entry->second.get();
    const auto pixels = pixelsOf(face, glyph);
    if (!pixels)
        return nullptr;
    images_.push_back(writeImage(output_, *pixels));
    entry->second = std::make_unique<GlyphPicture>();
    entry->second->image = static_cast<int>(images_.size()) - 1;
    place(*entry->second, face, glyph, *pixels);
    return entry->second.get();
}

double FontLibrary::measure(StringView text, Face& face) {
    shape(text, face, measured_);
    return measured_.width;
}

std::string FontLibrary::embedFonts() {
    std::string resources;
    for (const Face* face : faces_)
        if (face->isUsed()) {
            const int object = output_.allocate();
            face->embed(output_, object);
            resources += "/F" + std::to_string(face->number()) + " " + reference(object);
        }
    return resources;
}

std::string FontLibrary::imageResources() const {
    std::string resources;
    for (std::size_t i = 0; i < images_.size(); ++i)
        resources += "/I" + std::to_string(i) + " " + reference(images_[i]);
    return resources;
}

} // namespace kvtdruck::druckwerk
