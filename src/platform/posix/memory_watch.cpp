#include "platform/posix/memory_watch.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include <dlfcn.h>
#include <unistd.h>

namespace kvtdruck {
namespace {

std::atomic<long> refusals = 0;

} // namespace

bool memoryWasRefused() {
    return refusals.load(std::memory_order_relaxed) > 0;
}

void giveUpForWantOfMemory() {
    constexpr char kText[] = "Fehler: Der Arbeitsspeicher reicht nicht aus.\n";
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kText, sizeof kText - 1);
    std::abort();
}

} // namespace kvtdruck

// The sanitizers have an allocator of their own, which ends the process where memory is short.
#ifndef KVT_SANITIZED

namespace kvtdruck {
namespace {

/// A library that is refused so often asks for ever, and has no other end.
constexpr long kMostRefusals = 1'000'000;

/// Finds the C library's function that the one of that name here stands before.
template <class Function>
void find(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// The functions of the C library. All are looked for at the first allocation of the process, which the libraries'
/// start makes: later, the dynamic linker may be who allocates, for a message that it gives back when it is asked
/// for anything else.
struct Allocation {
    Allocation() {
        find(malloc, "malloc");
        find(calloc, "calloc");
        find(realloc, "realloc");
        find(aligned_alloc, "aligned_alloc");
        find(posix_memalign, "posix_memalign");
    }

    void* (*malloc)(std::size_t);
    void* (*calloc)(std::size_t, std::size_t);
    void* (*realloc)(void*, std::size_t);
    void* (*aligned_alloc)(std::size_t, std::size_t);
    int (*posix_memalign)(void**, std::size_t, std::size_t);
};

const Allocation& allocation() {
    static const Allocation kAllocation;
    return kAllocation;
}

void* watched(void* memory, std::size_t size) {
    if (memory == nullptr && size > 0 && refusals.fetch_add(1, std::memory_order_relaxed) == kMostRefusals)
        giveUpForWantOfMemory();
    return memory;
}

} // namespace
} // namespace kvtdruck

// A program's own functions of these names are taken by all its libraries:
// https://www.gnu.org/software/libc/manual/html_node/Replacing-malloc.html
extern "C" {

void* malloc(std::size_t size) {
    return kvtdruck::watched(kvtdruck::allocation().malloc(size), size);
}

void* calloc(std::size_t count, std::size_t size) {
    return kvtdruck::watched(kvtdruck::allocation().calloc(count, size), count * size);
}

void* realloc(void* old, std::size_t size) {
    return kvtdruck::watched(kvtdruck::allocation().realloc(old, size), size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return kvtdruck::watched(kvtdruck::allocation().aligned_alloc(alignment, size), size);
}

int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
    const int error = kvtdruck::allocation().posix_memalign(result, alignment, size);
    if (error == ENOMEM)
        kvtdruck::watched(nullptr, size);
    return error;
}
}

#endif
