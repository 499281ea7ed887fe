// A host that loads the DLL, has it fail and work on two threads, and lets it go again, a thousand times.
#include "stage.h"

namespace kvtdruck::test {
namespace {

/// The bytes in use on all heaps of the process.
long long heapBytes() {
    HANDLE heaps[64];
    const auto count = GetProcessHeaps(64, heaps);
    EXPECT_LE(count, 64U);
    long long bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry))
            bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

class Unload : public HostTest {
  protected:
    void loadUseUnload() {
        const HMODULE module = LoadLibraryW(dllPath().c_str());
        ASSERT_NE(module, nullptr);
        classObject_ =
            reinterpret_cast<ClassObject*>(reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
        {
            const auto manager = newManager();
            EXPECT_FALSE(stage.print(*manager.get(), L"Umsatz")) << "without fkt_Init there is no job table";
            stage.init(*manager.get());
            EXPECT_EQ(invoke(manager.get(), L"Terminate_Preview", DISPATCH_METHOD, {Value(100L)}), S_OK);
            stage.forgetErrors();
        }
        // Another host thread, which ends before the DLL goes. A failure within is skipped there.
        std::thread([this] { EXPECT_TRUE(stage.terminate(*newManager().get())); }).join();
        EXPECT_EQ(dllCanUnloadNow(), S_OK);
        FreeLibrary(module);
        ASSERT_EQ(GetModuleHandleW(L"KDVTDruck.dll"), nullptr);
    }

    Stage stage;

  private:
    using ClassObject = HRESULT WINAPI(REFCLSID, REFIID, void**);

    Ref<DruckManager> newManager() const {
        void* object = nullptr;
        EXPECT_EQ(classObject_(kManagerClass.clsid, IID_IClassFactory, &object), S_OK);
        const Ref<IClassFactory> factory(static_cast<IClassFactory*>(object));
        EXPECT_EQ(factory->CreateInstance(nullptr, kManagerClass.iid, &object), S_OK);
        return Ref<DruckManager>(static_cast<DruckManager*>(object));
    }

    ClassObject* classObject_ = nullptr;
};

TEST_F(Unload, LeavesNothingBehind) {
    for (int i = 0; i < 20; ++i) // what the system makes once and keeps is there now
        loadUseUnload();
    const auto bytes = heapBytes();
    const auto handles = openHandles();
    for (int i = 0; i < 1000; ++i)
        loadUseUnload();
    EXPECT_EQ(heapBytes(), bytes);
    EXPECT_LT(openHandles(), handles + 10) << "the handle of a thread that ends goes a moment later";
}

} // namespace
} // namespace kvtdruck::test
