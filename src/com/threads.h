// Locks and places of the threads: the system's own, since those of the C++ runtime (mutexes, thread-local
// variables) keep memory that the unloading of a DLL leaves behind.
#pragma once

#include <windows.h>

#include <new>

namespace kvtdruck::com {

/// Holds a lock of the module.
class Locked {
  public:
    explicit Locked(SRWLOCK& lock) : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { ReleaseSRWLockExclusive(&lock_); }

  private:
    SRWLOCK& lock_;
};

/// A place of every thread for a `T` of its own; empty at first.
template <class T>
class ThreadSlot {
  public:
    ThreadSlot() : index_(TlsAlloc()) {}
    ThreadSlot(const ThreadSlot&) = delete;
    ThreadSlot& operator=(const ThreadSlot&) = delete;
    ~ThreadSlot() { TlsFree(index_); }

    T* get() const { return static_cast<T*>(TlsGetValue(index_)); }
    void set(T* content) const {
        if (!TlsSetValue(index_, content))
            throw std::bad_alloc();
    }

  private:
    DWORD index_;
};

} // namespace kvtdruck::com
