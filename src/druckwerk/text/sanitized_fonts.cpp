// Part of every sanitized program that uses the engine. fontconfig's patterns refer to their values by offsets,
// which the leak detector can't follow: what its caches hold would look lost at the end. They are given back before
// it looks. (Told to suppress them instead, it reads the debugging symbols first, which took most of the time of a
// short run.)
#include <fontconfig/fontconfig.h>

namespace {

[[gnu::destructor]] void giveBackFontCaches() {
    FcFini();
}

} // namespace
