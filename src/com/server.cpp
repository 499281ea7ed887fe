#include "com/server.h"

#include "com/com_error.h"
#include "com/engine_host.h"
#include "com/host_libraries.h"
#include "platform/windows/windows_platform.h"

#include <oleauto.h>

namespace kvtdruck::com {
namespace {

struct State {
    WindowsPlatform platform;
    ComKvtzug kvtzug;
    ComFehlerFactory fehler;
    ComFormFactory forms;
    Modul modul{platform, kvtzug, fehler};
    basLL80 jobTable{modul};
};

// Never destroyed by the end of the process: COM is gone by then, and the foreign objects with it.
State* state = nullptr;

} // namespace

std::atomic<long> liveObjects = 0;

Component component() {
    if (!state)
        state = new State;
    return {state->modul, state->jobTable, state->forms};
}

void releaseComponent() {
    delete std::exchange(state, nullptr);
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
