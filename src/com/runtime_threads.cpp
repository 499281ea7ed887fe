// The C++ runtime is built for a threads library that keeps a record, locks and handles of each thread for each
// loading of a DLL: one and a half kilobytes and four handles, which nobody gives back when the DLL is unloaded.
// Here is all that the runtime takes from it within the DLL, on what the system offers without any memory. The
// linker prefers these to the library's own; were one missing, or one too many, the link would fail.
#include "com/runtime_threads.h"

#include "com/threads.h"

#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <cxxabi.h>
#include <utility>

#ifdef __clang__
#pragma clang diagnostic ignored "-Wreserved-identifier"
#endif

// The runtime's way to give back the pool for exceptions without memory. It has no header:
// https://gcc.gnu.org/git/?p=gcc.git;f=libstdc++-v3/libsupc%2B%2B/eh_alloc.cc
namespace __gnu_cxx {
void __freeres();
}

namespace kvtdruck::com {
namespace {

/// The exceptions of one thread, as the ABI lays them out
/// (https://itanium-cxx-abi.github.io/cxx-abi/abi-eh.html#cxx-data), and the way from one thread's to the next.
struct Exceptions {
    void* caught;
    unsigned uncaught;
    Exceptions* next;
};

const ThreadSlot<Exceptions> slot;
SRWLOCK listLock = SRWLOCK_INIT;
Exceptions* list = nullptr;

__cxxabiv1::__cxa_eh_globals* exceptionsOfThread() noexcept {
    auto* exceptions = slot.get();
    if (!exceptions) {
        exceptions = static_cast<Exceptions*>(std::calloc(1, sizeof(Exceptions)));
        if (!exceptions)
            std::abort(); // as the runtime does: without them nothing can be thrown
        slot.set(exceptions);
        const Locked locked(listLock);
        exceptions->next = std::exchange(list, exceptions);
    }
    return reinterpret_cast<__cxxabiv1::__cxa_eh_globals*>(exceptions);
}

/// The system's lock or condition variable in the place of the threads library's: both are a pointer wide and empty
/// at first. The library's initialisers (plain, recursive, checking: -1 to -3) are no values that they ever take.
/// The runtime asks for a recursive lock in one place, for the states of local statics, and never locks it twice.
template <class Native, class Place>
Native* native(Place* place) {
    static_assert(sizeof(Native) == sizeof(Place));
    std::atomic_ref<Place> word(*place);
    for (Place initialiser : {Place{-1}, Place{-2}, Place{-3}})
        word.compare_exchange_strong(initialiser, Place{});
    return reinterpret_cast<Native*>(place);
}

} // namespace

void freeRuntimeMemoryOfThread() noexcept {
    auto* const ending = slot.get();
    if (!ending)
        return;
    slot.set(nullptr);
    const Locked locked(listLock);
    auto** place = &list;
    while (*place != ending)
        place = &(*place)->next;
    *place = ending->next;
    std::free(ending);
}

void freeRuntimeMemory() noexcept {
    while (list)
        std::free(std::exchange(list, list->next));
    __gnu_cxx::__freeres();
}

} // namespace kvtdruck::com

using kvtdruck::com::exceptionsOfThread;
using kvtdruck::com::Locked;
using kvtdruck::com::native;

extern "C" {

__cxxabiv1::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals() noexcept {
    return exceptionsOfThread();
}

__cxxabiv1::__cxa_eh_globals* __cxxabiv1::__cxa_get_globals_fast() noexcept {
    return exceptionsOfThread();
}

// The routines of the runtime set up one lock or one table; none of them leads here again.
int pthread_once(pthread_once_t* once, void (*routine)()) {
    static SRWLOCK lock = SRWLOCK_INIT;
    const std::atomic_ref done(*once);
    if (done.load(std::memory_order_acquire) != PTHREAD_ONCE_INIT)
        return 0;
    const Locked locked(lock);
    if (done.load(std::memory_order_relaxed) == PTHREAD_ONCE_INIT) {
        routine();
        done.store(1, std::memory_order_release);
    }
    return 0;
}

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*) {
    *mutex = {};
    return 0;
}

int pthread_mutex_destroy(pthread_mutex_t*) {
    return 0;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) {
    AcquireSRWLockExclusive(native<SRWLOCK>(mutex));
    return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    ReleaseSRWLockExclusive(native<SRWLOCK>(mutex));
    return 0;
}

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    SleepConditionVariableSRW(native<CONDITION_VARIABLE>(condition), native<SRWLOCK>(mutex), INFINITE, 0);
    return 0;
}

int pthread_cond_broadcast(pthread_cond_t* condition) {
    WakeAllConditionVariable(native<CONDITION_VARIABLE>(condition));
    return 0;
}
}
