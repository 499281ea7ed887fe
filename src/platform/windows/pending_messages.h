// The host's pending window messages.
#pragma once

#include <cstdint>

struct tagMSG;

namespace kvtdruck {

/// Hands the messages that wait for the calling thread to their windows, pass by pass; one object serves one
/// thread.
class PendingMessages {
  public:
    PendingMessages();

    /// One pass takes what is pending when it begins. What arrives meanwhile waits for the host's own loop, so that
    /// a window that posts its message anew each time does not keep the component for ever. A pass may be begun
    /// within another one's messages.
    void process();

  private:
    bool take(unsigned kinds, unsigned first, unsigned last, tagMSG& message);
    void takeThoseBefore(unsigned long moment, unsigned kinds, unsigned first, unsigned last);

    /// The message that stands behind what was posted before a pass; its first parameter is the pass.
    const unsigned endMark_;
    /// Passes that were begun, and the last one whose end was met.
    std::uint32_t begun_ = 0;
    std::uint32_t ended_ = 0;
};

} // namespace kvtdruck
