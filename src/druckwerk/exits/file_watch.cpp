#include "druckwerk/exits/file_watch.h"

#include "platform/posix/posix_error.h"

#include <array>
#include <cerrno>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace std::chrono_literals;

constexpr auto kLongestWait = 100ms;
/// Programs that write in several steps make a shorter break between them.
constexpr auto kRest = 150ms;
constexpr auto kLongestChange = 1000ms;

} // namespace

/// The folder is watched, since a file that is replaced takes a watch on itself along.
FileWatch::FileWatch(const std::filesystem::path& file)
    : name_(file.filename().string()), events_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    if (events_ >= 0 &&
        ::inotify_add_watch(events_, folder.c_str(), IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_ONLYDIR) >= 0)
        return;
    const int error = errno;
    if (events_ >= 0)
        ::close(events_);
    throwSystemError(error);
}

FileWatch::~FileWatch() {
    ::close(events_);
}

void FileWatch::takeEvents() {
    alignas(inotify_event) std::array<char, 16384> buffer;
    for (ssize_t size = 0; (size = ::read(events_, buffer.data(), buffer.size())) > 0;)
        for (ssize_t at = 0; at < size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            at += ssize_t(sizeof *event + event->len);
            const bool lost = (event->mask & IN_Q_OVERFLOW) != 0; // some that nobody kept
            if (!lost && (event->len == 0 || name_ != event->name))
                continue;
            lastChange_ = Clock::now();
            if (!changed_)
                firstChange_ = lastChange_;
            changed_ = true;
        }
}

bool FileWatch::hasChanged() {
    pollfd waiting{events_, POLLIN, 0};
    ::poll(&waiting, 1, int(kLongestWait.count()));
    takeEvents();
    if (!changed_ || (!rests(kRest) && Clock::now() - firstChange_ < kLongestChange))
        return false;
    changed_ = false;
    return true;
}

bool FileWatch::rests(std::chrono::milliseconds time) const {
    return Clock::now() - lastChange_ >= time;
}

} // namespace kvtdruck::druckwerk
