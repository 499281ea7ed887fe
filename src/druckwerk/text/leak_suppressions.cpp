// Part of every sanitized program that uses the engine. fontconfig's patterns refer to their values by offsets,
// which the leak detector can't follow: what its caches hold to the end looks lost.
#ifdef __clang__
#pragma clang diagnostic ignored "-Wreserved-identifier" // the sanitizer's names
#endif
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

// The program's messages are the user's: no list of suppressions behind them.
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
