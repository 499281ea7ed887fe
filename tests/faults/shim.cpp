// Fails the n-th call of a kind that a program makes, once or from then on. Loaded before the program's libraries
// (LD_PRELOAD), it takes the place of `main`: a server that runs the program's own in a child for every request it
// reads, so that hundreds of runs cost one start.
//
// KVT_FAULTS names two descriptors, "IN,OUT". A request is a line "KIND NUMBER ONCE FOLDER": the kind of call and
// its number from 1 (0 for no fault), 1 for once, and a folder for the files "output" and "errors" of the standard
// streams. The answer is a line: the status that waitpid gives, whether the fault was met, and the calls of each
// kind. KVT_FAULTS_PRINTER names a file: calls of the print service then go to one that writes to it.
#include "faults/shim.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __clang__
#pragma clang diagnostic ignored "-Wreserved-identifier" // the C library's names
#endif

namespace kvtdruck::faults {
namespace {

constexpr rlim_t kMostComputing = 10; // seconds of a run that does not hang
constexpr int kMostWaiting = 200'000; // milliseconds, on a machine that does other things as well

/// Shared by a run and all processes that it starts.
struct Plan {
    std::array<std::atomic<long>, kKinds> calls;
    std::atomic<bool> met;
    std::atomic<bool> armed;
    int kind;
    long number;
    bool once;
};
Plan* plan = nullptr;
pid_t server = 0;

using Main = int (*)(int, char**, char**);
Main programMain = nullptr;

void toFile(const std::string& name, int descriptor) {
    const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(file, descriptor);
    ::close(file);
}

/// A command of the server becomes a run in a child of it.
void beginRun(const std::string& folder) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit computing{kMostComputing, kMostComputing + 1};
    ::setrlimit(RLIMIT_CPU, &computing); // ends it with SIGXCPU
    toFile(folder + "/output", STDOUT_FILENO);
    toFile(folder + "/errors", STDERR_FILENO);
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("KVT_FAULTS");
    plan->armed = true;
}

/// Waits for the end of a run. One that waits for ever is killed.
int statusOf(pid_t run) {
    int status = 0;
    for (int waited = 0; ::waitpid(run, &status, WNOHANG) == 0; ++waited) {
        if (waited == kMostWaiting)
            ::kill(run, SIGKILL);
        ::usleep(1000);
    }
    return status;
}

int serve(int argc, char** argv, char** environment) {
    int in = -1;
    int out = -1;
    if (std::sscanf(std::getenv("KVT_FAULTS"), "%d,%d", &in, &out) != 2)
        return 125;
    plan = new (::mmap(nullptr, sizeof(Plan), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Plan();
    server = ::getpid();
    FILE* requests = ::fdopen(in, "r");
    std::array<char, 4096> line{};
    while (std::fgets(line.data(), int(line.size()), requests) != nullptr) {
        std::array<char, 4096> folder{};
        int once = 0;
        plan->armed = plan->met = false;
        for (auto& count : plan->calls)
            count = 0;
        if (std::sscanf(line.data(), "%d %ld %d %4095s", &plan->kind, &plan->number, &once, folder.data()) != 4)
            return 125;
        plan->once = once != 0;
        const pid_t run = ::fork();
        if (run == 0) {
            ::close(in);
            ::close(out);
            beginRun(folder.data());
            return programMain(argc, argv, environment);
        }
        const int status = statusOf(run);
        plan->armed = false;
        std::string answer = std::to_string(status) + " " + std::to_string(int(plan->met));
        for (const auto& count : plan->calls)
            answer += " " + std::to_string(count);
        answer += "\n";
        if (::write(out, answer.data(), answer.size()) != ssize_t(answer.size()))
            return 125;
    }
    return 0;
}

} // namespace

bool fails(Kind kind) {
    if (plan == nullptr || !plan->armed)
        return false;
    const long number = ++plan->calls[std::size_t(kind)];
    if (int(kind) != plan->kind || plan->number == 0 ||
        (plan->once ? number != plan->number : number < plan->number))
        return false;
    plan->met = true;
    return true;
}

} // namespace kvtdruck::faults

/// glibc begins a program with this call.
extern "C" int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(),
                                 void (*fini)(), void (*rtldFini)(), void* stackEnd) {
    using namespace kvtdruck::faults;
    using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
    const auto start = reinterpret_cast<Start>(::dlsym(RTLD_NEXT, "__libc_start_main"));
    programMain = main;
    return start(std::getenv("KVT_FAULTS") != nullptr ? serve : main, argc, argv, init, fini, rtldFini, stackEnd);
}
