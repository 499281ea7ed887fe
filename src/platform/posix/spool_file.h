// A file without a name, for content that is read once it is complete.
#pragma once

#include "platform/posix/atomic_file.h"
#include "platform/posix/posix_error.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace kvtdruck {

/// Lies among the system's temporary files, for its owner alone, and is gone with the object and with the process.
/// Every operation raises std::system_error where it fails.
class SpoolFile {
  public:
    SpoolFile() {
        auto name = (std::filesystem::temp_directory_path() / "kvtdruck-XXXXXX").string();
        descriptor_ = ::mkostemp(name.data(), O_CLOEXEC); // mode 0600
        if (descriptor_ < 0)
            throwSystemError();
        ::unlink(name.c_str());
    }
    SpoolFile(const SpoolFile&) = delete;
    SpoolFile& operator=(const SpoolFile&) = delete;
    ~SpoolFile() { ::close(descriptor_); }

    void write(std::string_view data) { writeAll(descriptor_, data); }

    /// Calls `take` with the whole content, piece by piece.
    template <class Take>
    void read(Take&& take) const {
        std::string piece(1 << 16, '\0');
        for (off_t position = 0;;) {
            const ssize_t size = ::pread(descriptor_, piece.data(), piece.size(), position);
            if (size < 0 && errno == EINTR)
                continue;
            if (size < 0)
                throwSystemError();
            if (size == 0)
                return;
            take(std::string_view(piece).substr(0, static_cast<std::size_t>(size)));
            position += size;
        }
    }

  private:
    int descriptor_ = -1;
};

} // namespace kvtdruck
