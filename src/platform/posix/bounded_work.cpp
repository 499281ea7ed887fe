#include "platform/posix/bounded_work.h"

#include "platform/posix/atomic_file.h"
#include "platform/posix/memory_watch.h"
#include "platform/posix/posix_error.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <new>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace kvtdruck {

namespace {

constexpr char kDone = '+';
constexpr char kFailed = '-';
constexpr std::size_t kMostResult = std::size_t{1} << 28;

void limit(int resource, rlim_t most) {
    const rlimit value{most, most};
    ::setrlimit(static_cast<__rlimit_resource>(resource), &value);
}

[[noreturn]] void workIn(int pipe, const WorkLimits& limits, const std::function<std::string()>& work) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // nobody waits for it then
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, limits.computing);
#ifndef KVT_SANITIZED // which takes terabytes of addresses for itself
    limit(RLIMIT_AS, limits.memory);
#endif
    std::string result;
    try {
        result = kDone + work();
        if (memoryWasRefused()) // the result may not be what it should
            throw std::bad_alloc();
    } catch (const std::exception& error) {
        result = kFailed + std::string(error.what());
    }
    try {
        writeAll(pipe, result);
    } catch (const std::system_error&) {
        ::_exit(1);
    }
    ::_exit(0);
}

/// All that comes out of the pipe until its end; nothing where that takes too long or is too much.
std::optional<std::string> readAll(int pipe, std::chrono::steady_clock::time_point end) {
    std::string text;
    std::array<char, 1 << 16> piece{};
    while (text.size() < kMostResult) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
        pollfd waiting{pipe, POLLIN, 0};
        const int ready = left > 0 ? ::poll(&waiting, 1, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return std::nullopt;
        const ssize_t size = ::read(pipe, piece.data(), piece.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            return std::nullopt;
        if (size == 0)
            return text;
        text.append(piece.data(), static_cast<std::size_t>(size));
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> runBounded(const WorkLimits& limits, const std::function<std::string()>& work) {
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
        throwSystemError();
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipe[0]);
        workIn(pipe[1], limits, work);
    }
    const int error = errno;
    ::close(pipe[1]);
    if (child < 0) {
        ::close(pipe[0]);
        throwSystemError(error);
    }
    const auto result = readAll(pipe[0], std::chrono::steady_clock::now() + std::chrono::seconds(limits.waiting));
    ::close(pipe[0]);
    if (!result)
        ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    if (!result || result->empty() || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return std::nullopt;
    if (result->front() == kFailed)
        throw WorkFailed(result->substr(1));
    return result->substr(1);
}

} // namespace kvtdruck
