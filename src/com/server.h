// The DLL's own state: what it shares among its objects, how many of them live, and its type library.
#pragma once

#include "com/com_ptr.h"
#include "manager/basLL80.h"
#include "module/component_state.h"

#include <oaidl.h>

#include <atomic>
#include <string>

namespace kvtdruck::com {

/// What all objects of the DLL share within the process.
struct Component {
    ComponentState& state;
    basLL80& jobTable;
    FormFactory& forms;
};

/// The shared state, made at the first use.
Component component();

/// Lets go of the shared state; the next use makes it anew. Call only while no object lives: foreign objects must
/// be released before the DLL is unloaded, and while COM is still there.
void releaseComponent();

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

/// The type library inside the DLL; it needs no registry. Failures are run-time errors.
ComPtr<ITypeLib> ownTypeLibrary();

} // namespace kvtdruck::com
