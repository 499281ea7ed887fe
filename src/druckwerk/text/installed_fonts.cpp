// On Linux fontconfig knows the fonts.
#include "druckwerk/text/installed_fonts.h"

#include "druckwerk/common/deleter.h"
#include "platform/posix/memory_watch.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fontconfig/fontconfig.h>
#include <future>
#include <strings.h>
#include <system_error>

namespace kvtdruck::druckwerk {

namespace {

using Pattern = std::unique_ptr<FcPattern, Deleter<FcPatternDestroy>>;
using FontSet = std::unique_ptr<FcFontSet, Deleter<FcFontSetDestroy>>;

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

FontFile fileOf(FcPattern* pattern) {
    FontFile font;
    FcChar8* text = nullptr;
    if (FcPatternGetString(pattern, FC_FILE, 0, &text) == FcResultMatch)
        font.file = reinterpret_cast<const char*>(text);
    FcPatternGetInteger(pattern, FC_INDEX, 0, &font.index);
    font.index &= 0xFFFF; // above it stands the instance of a variable font
    for (int i = 0; FcPatternGetString(pattern, FC_FAMILY, i, &text) == FcResultMatch; ++i)
        font.families.emplace_back(reinterpret_cast<const char*>(text));
    font.pictures = !isUsable(pattern, false);
    return font;
}

/// The one reading of this process. Where memory is refused in it, fontconfig (2.14.1) keeps a lock that it waits
/// for itself, for ever.
class Reading {
  public:
    Reading() = default;
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading() { await(); }

    void begin() {
        if (begun_.valid())
            return;
        try {
            begun_ = std::async(std::launch::async, [] { FcInit(); });
        } catch (
            const std::system_error&) { // NOLINT(bugprone-empty-catch): without a thread it is read when needed
        }
    }
    void await() const {
        constexpr std::chrono::seconds kPatience(10);
        while (begun_.valid() && begun_.wait_for(kPatience) == std::future_status::timeout)
            if (memoryWasRefused())
                giveUpForWantOfMemory();
    }

  private:
    std::shared_future<void> begun_;
};

Reading& reading() {
    static Reading one;
    return one;
}

} // namespace

void InstalledFonts::prepare() {
    reading().begin();
}

void InstalledFonts::awaitPreparation() {
    reading().await();
}

bool FontFile::hasFamily(const std::string& name) const {
    return std::any_of(families.begin(), families.end(),
                       [&](const std::string& family) { return strcasecmp(family.c_str(), name.c_str()) == 0; });
}

struct InstalledFonts::Sorted {
    FontSet fonts;
};

InstalledFonts::InstalledFonts() = default;
InstalledFonts::~InstalledFonts() = default;

bool InstalledFonts::findLike(const FontRequest& request, const Visit& visit) const {
    awaitPreparation();
    const Pattern pattern = patternFor(request);
    FcResult result = FcResultNoMatch;
    const Pattern match(FcFontMatch(nullptr, pattern.get(), &result));
    if (match && isUsable(match.get(), false) && visit(fileOf(match.get())))
        return true;
    const FontSet all(FcFontSort(nullptr, pattern.get(), FcTrue, nullptr, &result));
    for (int i = 0; all && i < all->nfont; ++i)
        if (isUsable(all->fonts[i], false) && visit(fileOf(all->fonts[i])))
            return true;
    return false;
}

bool InstalledFonts::findWith(char32_t c, const Visit& visit) {
    awaitPreparation();
    if (!sorted_) {
        const Pattern pattern = patternFor({{"sans-serif"}, 400, false});
        FcResult result = FcResultNoMatch;
        sorted_ = std::make_unique<Sorted>();
        sorted_->fonts.reset(FcFontSort(nullptr, pattern.get(), FcFalse, nullptr, &result));
    }
    for (int i = 0; sorted_->fonts && i < sorted_->fonts->nfont; ++i) {
        FcPattern* candidate = sorted_->fonts->fonts[i];
        FcCharSet* characters = nullptr;
        if (FcPatternGetCharSet(candidate, FC_CHARSET, 0, &characters) == FcResultMatch &&
            FcCharSetHasChar(characters, c) != FcFalse && isUsable(candidate, true) && visit(fileOf(candidate)))
            return true;
    }
    return false;
}

} // namespace kvtdruck::druckwerk
