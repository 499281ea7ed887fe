// Part of every sanitized program that uses the engine. fontconfig's patterns refer to their values by offsets,
// which the leak detector can't follow: what its caches hold to the end looks lost.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:libfontconfig";
}

// The program's messages are the user's: no list of suppressions behind them.
extern "C" const char* __lsan_default_options();  // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_options() { // NOLINT(bugprone-reserved-identifier)
    return "print_suppressions=0";
}
