// The engine's own failures on their way to the operation that answers their code.
#pragma once

#include "druckwerk/common/engine_codes.h"
#include "platform/posix/posix_platform.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace kvtdruck::druckwerk {

/// An engine code with its German message (UTF-8).
class Fault : public std::runtime_error {
  public:
    Fault(std::int32_t code, const std::string& message) : std::runtime_error(message), code_(code) {}
    std::int32_t code() const noexcept { return code_; }

  private:
    std::int32_t code_;
};

/// German for a system call's error number where a file is read, and where one is written.
inline std::string reasonForReading(int systemError) {
    return toUtf8(runtimeErrorOf(systemError).description());
}
inline std::string reasonForWriting(int systemError) {
    return systemError == ENOENT ? "den Ordner gibt es nicht" : reasonForReading(systemError);
}

/// The engine code of a file that can't be written, with its message.
inline Fault outputFault(const std::filesystem::path& file, const std::system_error& error) {
    return {kOutputFailed, "Die Datei „" + file.string() +
                               "“ kann nicht geschrieben werden: " + reasonForWriting(error.code().value())};
}

} // namespace kvtdruck::druckwerk
