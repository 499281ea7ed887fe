#include "cli/child_process.h"

#include "cli/cancellation.h"
#include "cli/outcome.h"

#include <cerrno>
#include <csignal>
#include <iostream>
#include <system_error>
#include <utility>

#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kvtdruck::cli {
namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void flush() {
    std::cout.flush();
    std::cerr.flush();
}

} // namespace

Descriptor::Descriptor(int number) : number_(number) {
    if (number < 0)
        fail("descriptor");
}

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

void Descriptor::close() {
    if (number_ >= 0)
        ::close(std::exchange(number_, -1));
}

std::array<Descriptor, 2> openChannel() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        fail("socketpair");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

pid_t beginProcess(const std::function<int()>& work, unsigned grace) {
    flush(); // what waits here is not to be told twice
    const auto parent = ::getpid();
    const auto id = ::fork();
    if (id < 0)
        fail("fork");
    if (id > 0)
        return id;
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent)
        ::_exit(kCancelled);
    watchForCancellation(grace);
    const int code = work();
    flush();
    ::_exit(code); // what the parent has opened is the parent's to close
}

std::string crashText(int signal) {
    return "Fehler: Der Druck ist abgestürzt (Signal " + std::to_string(signal) + ").\n";
}

} // namespace kvtdruck::cli
