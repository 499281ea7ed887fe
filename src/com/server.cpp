#include "com/server.h"

#include "com/com_error.h"
#include "com/engine_host.h"
#include "com/host_libraries.h"
#include "platform/windows/windows_platform.h"

#include <oleauto.h>

namespace kvtdruck::com {
namespace {

struct Shared {
    WindowsPlatform platform;
    ComKvtzug kvtzug;
    ComFehlerFactory fehler;
    ComFormFactory forms;
    ComponentState state{platform, kvtzug, fehler};
    basLL80 jobTable{state};
};

// Never destroyed by the end of the process: COM is gone by then, and the foreign objects with it.
Shared* shared = nullptr;

} // namespace

std::atomic<long> liveObjects = 0;

Component component() {
    if (!shared)
        shared = new Shared;
    return {shared->state, shared->jobTable, shared->forms};
}

void releaseComponent() {
    delete std::exchange(shared, nullptr);
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
