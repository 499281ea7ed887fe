// The DLL's own state: what the objects of an apartment share, how many objects live, and the type library.
#pragma once

#include "com/com_ptr.h"
#include "com/engine_host.h"
#include "com/host_libraries.h"
#include "manager/basLL80.h"
#include "module/component_state.h"
#include "platform/windows/windows_platform.h"

#include <oaidl.h>

#include <atomic>
#include <memory>
#include <string>

namespace kvtdruck::com {

/// The module-level state of one apartment: what the objects that were made on one host thread share. It is made
/// with the first of them and ends with the last, on that thread, while COM is still there. An apartment whose host
/// never lets go of its objects keeps it: nothing of it may be called from another thread, nor after the end of its
/// own.
class Apartment : public std::enable_shared_from_this<Apartment> {
  public:
    /// The calling thread's; made where there is none.
    static std::shared_ptr<Apartment> current();

    Apartment() = default;
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment();

    /// Whether this is the calling thread's.
    bool isCurrent() const;

    ComponentState& state() { return state_; }
    basLL80& jobTable() { return jobTable_; }
    FormFactory& forms() { return forms_; }

  private:
    WindowsPlatform platform_;
    ComKvtzug kvtzug_;
    ComFehlerFactory fehler_;
    ComFormFactory forms_{platform_};
    ComponentState state_{platform_, kvtzug_, fehler_};
    basLL80 jobTable_{state_};
};

/// Objects and server locks that keep the DLL loaded.
extern std::atomic<long> liveObjects;

/// Counts one object while it lives.
class LiveObject {
  public:
    LiveObject() { ++liveObjects; }
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;
    ~LiveObject() { --liveObjects; }
};

/// The module that contains this code: the DLL, not the program that loaded it.
HMODULE ownModule();
/// The DLL's full path.
std::wstring ownPath();

/// The type library inside the DLL; it needs no registry. It is loaded at the first question and shared by all
/// threads, as the system's type libraries may be. Failures are run-time errors.
ComPtr<ITypeLib> ownTypeLibrary();
/// Lets go of it, when the DLL is unloaded.
void releaseOwnTypeLibrary();

} // namespace kvtdruck::com
