// Staying with a preview until the user has seen enough.
#pragma once

#include "cli/console.h"
#include "platform/posix/posix_platform.h"

namespace kvtdruck::cli {

/// Waits until the viewer `process` is closed, or Enter or Ctrl-C is pressed.
void waitForViewer(PosixProcesses& processes, std::int32_t process, Console& console);

} // namespace kvtdruck::cli
