// Ctrl-C and its like: the running report is asked to stop, and does so cleanly.
#pragma once

#include <atomic>

namespace kvtdruck::cli {

/// From now on SIGINT, SIGTERM and SIGHUP set `cancelled()` instead of ending the process; reads from the terminal
/// that are waiting return. What has not come to its end after that (a database, a print service that does not
/// answer) is given up: `grace` seconds later the process ends with the exit code of a cancelled job.
void watchForCancellation(unsigned grace = 3);

/// Whether the user has asked to stop.
const std::atomic<bool>& cancelled();

} // namespace kvtdruck::cli
