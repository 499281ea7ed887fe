// Works that are shared among processes: a work that crashes takes no other along, and libraries that know no
// threads may be used.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace kvtdruck::cli {

struct WorkResult {
    std::size_t work = 0;
    int exitCode = 0;
    std::string output; ///< what the work has written to standard output
    std::string errors; ///< and to standard error
};

/// Does the works 0 to `count` - 1 in that many processes. `work` runs in a process of its own, begins in order,
/// and gives an exit code; `done` is told here of each that has ended. When the user cancels no further work
/// begins, and those that run are asked to stop.
void shareWork(std::size_t count, std::size_t processes, const std::function<int(std::size_t)>& work,
               const std::function<void(const WorkResult&)>& done);

} // namespace kvtdruck::cli
