#include "cli/cancellation.h"

#include "cli/outcome.h"

#include <csignal>

#include <unistd.h>

namespace kvtdruck::cli {
namespace {

std::atomic<bool> asked = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only use lock-free atomics");

std::atomic<unsigned> secondsOfGrace = 0;
static_assert(std::atomic<unsigned>::is_always_lock_free, "see above");

void onSignal(int) {
    asked = true;
    ::alarm(secondsOfGrace);
}

/// Nothing is left behind but what lies in folders for temporary files: output has no name until it is complete.
void onEndOfGrace(int) {
    constexpr char kText[] = "Fehler: Abgebrochen, ohne auf eine Antwort zu warten.\n";
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kText, sizeof kText - 1);
    ::_exit(kCancelled);
}

} // namespace

void watchForCancellation(unsigned grace) {
    secondsOfGrace = grace;
    struct sigaction action {};
    action.sa_handler = onSignal; // without SA_RESTART: a waiting read returns
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
    action.sa_handler = onEndOfGrace;
    sigaction(SIGALRM, &action, nullptr);
}

const std::atomic<bool>& cancelled() {
    return asked;
}

} // namespace kvtdruck::cli
