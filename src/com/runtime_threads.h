// What the C++ runtime needs of threads, from the system itself; it leaves nothing behind when the DLL is unloaded.
#pragma once

namespace kvtdruck::com {

/// The calling thread ends: what the runtime keeps for it goes.
void freeRuntimeMemoryOfThread() noexcept;
/// The DLL goes: what the runtime keeps goes with it, also that of threads which live on. No exception is at work.
void freeRuntimeMemory() noexcept;

} // namespace kvtdruck::com
