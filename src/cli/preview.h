// Staying with a preview until the user has seen enough.
#pragma once

#include "cli/console.h"
#include "platform/posix/posix_platform.h"

#include <filesystem>

namespace kvtdruck::cli {

/// The right to make a preview in a folder. Previews bear the second in which they were begun in their name, so
/// there is one at a time, and the next one not before the second is over.
class PreviewTurn {
  public:
    /// Waits for it, until the user cancels.
    explicit PreviewTurn(const std::filesystem::path& folder);
    PreviewTurn(const PreviewTurn&) = delete;
    PreviewTurn& operator=(const PreviewTurn&) = delete;
    ~PreviewTurn();

  private:
    int folder_;
};

/// Waits until the viewer `process` is closed, or Enter or Ctrl-C is pressed.
void waitForViewer(PosixProcesses& processes, std::int32_t process, Console& console);

} // namespace kvtdruck::cli
