// The four entry points of the server.
#include "com/classes.h"
#include "com/com_ptr.h"
#include "com/counted.h"
#include "com/registration.h"
#include "com/runtime_threads.h"
#include "com/server.h"

#include <new>

namespace kvtdruck::com {
namespace {

class ClassFactory final : public Counted<IClassFactory> {
  public:
    explicit ClassFactory(const CoClass& coClass) : coClass_(coClass) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        if (outer)
            return CLASS_E_NOAGGREGATION;
        try {
            auto* created = coClass_.create();
            const auto result = created->QueryInterface(iid, object);
            created->Release();
            return result;
        } catch (...) {
            return E_OUTOFMEMORY;
        }
    }

    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        liveObjects += lock ? 1 : -1;
        return S_OK;
    }

  private:
    const CoClass& coClass_;
    LiveObject live_;
};

HRESULT guarded(HRESULT (*action)()) {
    try {
        return action();
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace
} // namespace kvtdruck::com

using namespace kvtdruck::com;

// At the end of the process the system takes all back by itself; when the DLL alone goes, nobody else does.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
    if (reason == DLL_THREAD_DETACH)
        freeRuntimeMemoryOfThread();
    if (reason == DLL_PROCESS_DETACH && !processEnds) {
        releaseOwnTypeLibrary();
        freeRuntimeMemory();
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
    if (!object)
        return E_POINTER;
    *object = nullptr;
    for (const auto& coClass : allClasses()) {
        if (coClass.id != id)
            continue;
        auto* factory = new (std::nothrow) ClassFactory(coClass);
        if (!factory)
            return E_OUTOFMEMORY;
        const auto result = factory->QueryInterface(iid, object);
        factory->Release();
        return result;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
    return liveObjects == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
    return guarded(registerComponent);
}

STDAPI DllUnregisterServer() {
    return guarded(unregisterComponent);
}
