#include "platform/posix/input_file.h"

#include "platform/posix/posix_error.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace kvtdruck {

namespace {

/// A signal that comes just before the wait does not end it, so none is longer than this.
constexpr int kLongestWait = 100; // milliseconds

class Input {
  public:
    /// Without waiting: a pipe that nobody writes to yet is open at once.
    explicit Input(const std::filesystem::path& file)
        : descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
        if (descriptor_ < 0)
            throwSystemError();
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;
    ~Input() { ::close(descriptor_); }

    void waitForData(const std::atomic<bool>* cancelled) const {
        pollfd input{descriptor_, POLLIN, 0};
        for (;;) {
            if (cancelled != nullptr && *cancelled)
                throwSystemError(ECANCELED);
            const int ready = ::poll(&input, 1, kLongestWait);
            if (ready > 0)
                return;
            if (ready < 0 && errno != EINTR)
                throwSystemError();
        }
    }

    /// Gives the number of bytes that have come, 0 at the end; nothing where they have not come after all.
    ssize_t read(char* data, std::size_t size) const {
        const ssize_t count = ::read(descriptor_, data, size);
        if (count < 0 && errno != EINTR && errno != EAGAIN)
            throwSystemError();
        return count;
    }

  private:
    int descriptor_;
};

} // namespace

std::string readInput(const std::filesystem::path& file, std::size_t most, const std::atomic<bool>* cancelled) {
    const Input input(file);
    std::string content;
    std::array<char, 1 << 16> piece{};
    for (;;) {
        input.waitForData(cancelled);
        const ssize_t count = input.read(piece.data(), piece.size());
        if (count == 0)
            return content;
        if (count < 0)
            continue;
        if (content.size() + std::size_t(count) > most)
            throwSystemError(EFBIG);
        content.append(piece.data(), std::size_t(count));
    }
}

} // namespace kvtdruck
