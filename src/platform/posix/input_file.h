// Input of any kind read whole, within bounds of memory and time.
#pragma once

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>

namespace kvtdruck {

/// The content of a file, a pipe or a device. A pipe is waited for until its writer has closed it, or until
/// `cancelled` is set. Raises std::system_error: EFBIG where there are more than `most` bytes, ECANCELED where it
/// was cancelled, or what the system says.
std::string readInput(const std::filesystem::path& file, std::size_t most = std::numeric_limits<std::size_t>::max(),
                      const std::atomic<bool>* cancelled = nullptr);

} // namespace kvtdruck
