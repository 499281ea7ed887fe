// Ctrl-C and its like: the running report is asked to stop, and does so cleanly.
#pragma once

#include <atomic>

namespace kvtdruck::cli {

/// From now on SIGINT, SIGTERM and SIGHUP set `cancelled()` instead of ending the process; reads from the terminal
/// that are waiting return.
void watchForCancellation();

/// Whether the user has asked to stop.
const std::atomic<bool>& cancelled();

} // namespace kvtdruck::cli
