// Work on what nobody has vouched for: in a process of its own, with an end to its time and memory.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace kvtdruck {

struct WorkLimits {
    unsigned computing;   ///< seconds of computing time
    unsigned waiting;     ///< seconds until its end
    std::uint64_t memory; ///< bytes of address space
};

/// The work has ended by itself and says why it has failed.
class WorkFailed : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// What `work` returns, when it is done by a copy of this process; nothing where it was ended by a limit or a
/// crash. An exception that leaves it is raised here as WorkFailed. Raises std::system_error where no process can
/// be started.
std::optional<std::string> runBounded(const WorkLimits& limits, const std::function<std::string()>& work);

} // namespace kvtdruck
