#include "com/server.h"

#include "com/com_error.h"

#include <oleauto.h>

#include <new>
#include <utility>

namespace kvtdruck::com {
namespace {

/// A place of every thread for its apartment. The system's own, since a compiler's thread-local variables leave
/// memory behind when a DLL is unloaded.
class ThreadSlot {
  public:
    ThreadSlot() : index_(TlsAlloc()) {}
    ThreadSlot(const ThreadSlot&) = delete;
    ThreadSlot& operator=(const ThreadSlot&) = delete;
    ~ThreadSlot() { TlsFree(index_); }

    Apartment* get() const { return static_cast<Apartment*>(TlsGetValue(index_)); }
    void set(Apartment* apartment) const {
        if (!TlsSetValue(index_, apartment))
            throw std::bad_alloc();
    }

  private:
    DWORD index_;
};

const ThreadSlot slot;

} // namespace

std::atomic<long> liveObjects = 0;

std::shared_ptr<Apartment> Apartment::current() {
    if (auto* const apartment = slot.get())
        return apartment->shared_from_this();
    auto made = std::make_shared<Apartment>();
    slot.set(made.get());
    return made;
}

// First of all the thread forgets it: what is released now may call the host, which may make new objects.
Apartment::~Apartment() {
    if (isCurrent())
        slot.set(nullptr);
}

bool Apartment::isCurrent() const {
    return slot.get() == this;
}

HMODULE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ownModule), &module);
    return module;
}

std::wstring ownPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const auto length = GetModuleFileNameW(ownModule(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

ComPtr<ITypeLib> ownTypeLibrary() {
    ComPtr<ITypeLib> library;
    check(LoadTypeLibEx(ownPath().c_str(), REGKIND_NONE, library.put()));
    return library;
}

} // namespace kvtdruck::com
