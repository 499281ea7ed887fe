#include "com/server.h"

#include "com/com_error.h"
#include "com/threads.h"

#include <oleauto.h>

#include <utility>

namespace kvtdruck::com {
namespace {

const ThreadSlot<Apartment> slot;

// No ComPtr: the end of a process must not call another library any more.
std::atomic<ITypeLib*> typeLibrary = nullptr;

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

// Two threads may load it at once, since the system's locks are not to be waited for within one of ours; one of
// them keeps it.
ComPtr<ITypeLib> ownTypeLibrary() {
    if (auto* const library = typeLibrary.load())
        return ComPtr<ITypeLib>(library);
    ComPtr<ITypeLib> loaded;
    check(LoadTypeLibEx(ownPath().c_str(), REGKIND_NONE, loaded.put()));
    ITypeLib* none = nullptr;
    if (typeLibrary.compare_exchange_strong(none, loaded.get()))
        loaded->AddRef();
    return loaded;
}

void releaseOwnTypeLibrary() {
    if (auto* const library = typeLibrary.exchange(nullptr))
        library->Release();
}

} // namespace kvtdruck::com
