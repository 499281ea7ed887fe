#include "cli/cancellation.h"

#include <csignal>

namespace kvtdruck::cli {
namespace {

std::atomic<bool> asked = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only use lock-free atomics");

void onSignal(int) {
    asked = true;
}

} // namespace

void watchForCancellation() {
    struct sigaction action {};
    action.sa_handler = onSignal; // without SA_RESTART: a waiting read returns
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signal, &action, nullptr);
}

const std::atomic<bool>& cancelled() {
    return asked;
}

} // namespace kvtdruck::cli
