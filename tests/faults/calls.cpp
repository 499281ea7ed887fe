// The calls of the system that can be made to fail: each asks the plan, and then the one that it stands for.
#include "faults/shim.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#ifdef __clang__
#pragma clang diagnostic ignored "-Wreserved-identifier" // the C library's names
#endif

using kvtdruck::faults::fails;
using kvtdruck::faults::Kind;

namespace {

/// The next definition of the function that calls it.
template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

template <class Result>
Result failed(int error, Result result) {
    errno = error;
    return result;
}

constexpr int kErrors = STDERR_FILENO; // a message that can't be written can't be judged

} // namespace

// FAULTY(KIND, ERROR, RESULT, TYPE, NAME, (PARAMETERS), (ARGUMENTS)): a function that fails with ERROR and RESULT.
#define FAULTY(kind, error, result, type, name, parameters, arguments)                                             \
    extern "C" type name parameters {                                                                              \
        static const auto call = next<type(*) parameters>(#name);                                                  \
        return fails(Kind::kind) ? failed<type>(error, result) : call arguments;                                   \
    }

// --- Memory: what the C library exports under these names needs no look-up, which would allocate ---

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t size) {
    return fails(Kind::Allocate) ? failed<void*>(ENOMEM, nullptr) : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    return fails(Kind::Allocate) ? failed<void*>(ENOMEM, nullptr) : __libc_calloc(count, size);
}
void* realloc(void* old, std::size_t size) {
    return fails(Kind::Allocate) ? failed<void*>(ENOMEM, nullptr) : __libc_realloc(old, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return fails(Kind::Allocate) ? failed<void*>(ENOMEM, nullptr) : __libc_memalign(alignment, size);
}
int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
    *result = fails(Kind::Allocate) ? nullptr : __libc_memalign(alignment, size);
    return *result == nullptr ? ENOMEM : 0;
}
}

// --- Files ---

FAULTY(Open, EMFILE, nullptr, FILE*, fopen, (const char* name, const char* mode), (name, mode))
FAULTY(Open, EMFILE, nullptr, FILE*, fopen64, (const char* name, const char* mode), (name, mode))
FAULTY(Open, EMFILE, nullptr, FILE*, fdopen, (int file, const char* mode), (file, mode))
FAULTY(Open, EMFILE, nullptr, DIR*, opendir, (const char* name), (name))
FAULTY(Open, EMFILE, nullptr, DIR*, fdopendir, (int file), (file))
FAULTY(Open, EACCES, -1, int, mkdir, (const char* name, mode_t mode), (name, mode))
FAULTY(Open, EACCES, nullptr, char*, mkdtemp, (char* name), (name))

namespace {

/// The machine's own caches are never written: a library that was refused its settings takes the system's, and
/// where it is refused the contents of a folder as well, it notes for everybody that there are none.
bool isMachines(const char* file, int flags) {
    constexpr char kCaches[] = "/var/cache/";
    return (flags & O_ACCMODE) != O_RDONLY && std::strncmp(file, kCaches, sizeof kCaches - 1) == 0;
}

mode_t modeOf(int flags, va_list arguments) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : mode_t{};
}

} // namespace

#define FAULTY_OPEN(name)                                                                                          \
    extern "C" int name(const char* file, int flags, ...) {                                                        \
        static const auto call = next<int (*)(const char*, int, ...)>(#name);                                      \
        va_list arguments;                                                                                         \
        va_start(arguments, flags);                                                                                \
        const mode_t mode = modeOf(flags, arguments);                                                              \
        va_end(arguments);                                                                                         \
        if (isMachines(file, flags))                                                                               \
            return failed(EROFS, -1);                                                                              \
        return fails(Kind::Open) ? failed(EMFILE, -1) : call(file, flags, mode);                                   \
    }
FAULTY_OPEN(open)
FAULTY_OPEN(open64)

#define FAULTY_OPENAT(name)                                                                                        \
    extern "C" int name(int folder, const char* file, int flags, ...) {                                            \
        static const auto call = next<int (*)(int, const char*, int, ...)>(#name);                                 \
        va_list arguments;                                                                                         \
        va_start(arguments, flags);                                                                                \
        const mode_t mode = modeOf(flags, arguments);                                                              \
        va_end(arguments);                                                                                         \
        return fails(Kind::Open) ? failed(EMFILE, -1) : call(folder, file, flags, mode);                           \
    }
FAULTY_OPENAT(openat)
FAULTY_OPENAT(openat64)

FAULTY(Read, EIO, -1, ssize_t, read, (int file, void* data, std::size_t size), (file, data, size))
FAULTY(Read, EIO, -1, ssize_t, pread, (int file, void* data, std::size_t size, off_t at), (file, data, size, at))
FAULTY(Read, EIO, -1, ssize_t, pread64, (int file, void* data, std::size_t size, off64_t at),
       (file, data, size, at))
FAULTY(Read, EIO, 0, std::size_t, fread, (void* data, std::size_t size, std::size_t count, FILE* file),
       (data, size, count, file))
FAULTY(Read, EIO, -1, ssize_t, readlink, (const char* name, char* text, std::size_t size), (name, text, size))
FAULTY(Read, EIO, nullptr, dirent*, readdir, (DIR * folder), (folder))
FAULTY(Read, EIO, nullptr, dirent64*, readdir64, (DIR * folder), (folder))

#define FAULTY_WRITE(name, parameters, arguments)                                                                  \
    extern "C" ssize_t name parameters {                                                                           \
        static const auto call = next<ssize_t(*) parameters>(#name);                                               \
        return file != kErrors && fails(Kind::Write) ? failed<ssize_t>(ENOSPC, -1) : call arguments;               \
    }
FAULTY_WRITE(write, (int file, const void* data, std::size_t size), (file, data, size))
FAULTY_WRITE(writev, (int file, const iovec* data, int count), (file, data, count))
FAULTY_WRITE(pwrite, (int file, const void* data, std::size_t size, off_t at), (file, data, size, at))
FAULTY_WRITE(pwrite64, (int file, const void* data, std::size_t size, off64_t at), (file, data, size, at))

extern "C" std::size_t fwrite(const void* data, std::size_t size, std::size_t count, FILE* file) {
    static const auto call = next<std::size_t (*)(const void*, std::size_t, std::size_t, FILE*)>("fwrite");
    return file != stderr && fails(Kind::Write) ? failed<std::size_t>(ENOSPC, 0) : call(data, size, count, file);
}

FAULTY(Sync, EIO, -1, int, fsync, (int file), (file))
FAULTY(Sync, EIO, -1, int, fdatasync, (int file), (file))
FAULTY(Sync, EIO, -1, int, ftruncate, (int file, off_t size), (file, size))
FAULTY(Sync, EIO, -1, int, ftruncate64, (int file, off64_t size), (file, size))
FAULTY(Sync, EIO, -1, off_t, lseek, (int file, off_t at, int from), (file, at, from))
FAULTY(Sync, EIO, -1, off64_t, lseek64, (int file, off64_t at, int from), (file, at, from))
FAULTY(Sync, EPERM, -1, int, fchmod, (int file, mode_t mode), (file, mode))
FAULTY(Sync, EPERM, -1, int, fchown, (int file, uid_t user, gid_t group), (file, user, group))

FAULTY(Rename, EIO, -1, int, rename, (const char* from, const char* to), (from, to))
FAULTY(Rename, EIO, -1, int, renameat, (int a, const char* from, int b, const char* to), (a, from, b, to))
FAULTY(Rename, EIO, -1, int, renameat2, (int a, const char* from, int b, const char* to, unsigned flags),
       (a, from, b, to, flags))
FAULTY(Rename, EIO, -1, int, link, (const char* from, const char* to), (from, to))
FAULTY(Rename, EIO, -1, int, linkat, (int a, const char* from, int b, const char* to, int flags),
       (a, from, b, to, flags))

FAULTY(Remove, EIO, -1, int, unlink, (const char* name), (name))
FAULTY(Remove, EIO, -1, int, unlinkat, (int folder, const char* name, int flags), (folder, name, flags))
FAULTY(Remove, EIO, -1, int, remove, (const char* name), (name))
FAULTY(Remove, EIO, -1, int, rmdir, (const char* name), (name))

// --- Processes ---

FAULTY(Process, EAGAIN, -1, pid_t, fork, (), ())
FAULTY(Process, EMFILE, -1, int, pipe, (int ends[2]), (ends))
FAULTY(Process, EMFILE, -1, int, pipe2, (int ends[2], int flags), (ends, flags))
FAULTY(Process, EMFILE, -1, int, socketpair, (int domain, int type, int protocol, int ends[2]),
       (domain, type, protocol, ends))

#define FAULTY_SPAWN(name)                                                                                         \
    extern "C" int name(pid_t* id, const char* file, const posix_spawn_file_actions_t* actions,                    \
                        const posix_spawnattr_t* attributes, char* const argv[], char* const environment[]) {      \
        static const auto call = next<decltype(&name)>(#name);                                                     \
        return fails(Kind::Process) ? EAGAIN : call(id, file, actions, attributes, argv, environment);             \
    }
FAULTY_SPAWN(posix_spawn)
FAULTY_SPAWN(posix_spawnp)

// --- The clock: a preview waits until the second is over, and there are thousands of them ---

extern "C" time_t time(time_t* result) {
    static const auto call = next<time_t (*)(time_t*)>("time");
    static time_t ahead = 0;
    const time_t now = call(nullptr) + ++ahead;
    if (result != nullptr)
        *result = now;
    return now;
}
