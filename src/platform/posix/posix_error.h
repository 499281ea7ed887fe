// What the system answers with, as an exception.
#pragma once

#include <cerrno>
#include <system_error>

namespace kvtdruck {

/// Throws std::system_error for an error number of the system, without any other the one of its last call.
[[noreturn]] inline void throwSystemError(int error = errno) {
    throw std::system_error(error, std::generic_category());
}

} // namespace kvtdruck
