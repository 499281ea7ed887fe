// Part of every sanitized program that uses the engine. fontconfig's patterns refer to their values by offsets,
// which the leak detector can't follow: what its caches hold to the end looks lost.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

// The program's messages are the user's: no list of suppressions behind them.
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier)
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
