// A host that loads the DLL, has it report an error, and lets it go again, a thousand times.
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
    void loadFailUnload() {
        const HMODULE module = LoadLibraryW(dllPath().c_str());
        ASSERT_NE(module, nullptr);
        using ClassObject = HRESULT WINAPI(REFCLSID, REFIID, void**);
        auto* const classObject =
            reinterpret_cast<ClassObject*>(reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
        {
            void* object = nullptr;
            ASSERT_EQ(classObject(kManagerClass.clsid, IID_IClassFactory, &object), S_OK);
            const Ref<IClassFactory> factory(static_cast<IClassFactory*>(object));
            ASSERT_EQ(factory->CreateInstance(nullptr, kManagerClass.iid, &object), S_OK);
            const Ref<DruckManager> manager(static_cast<DruckManager*>(object));
            EXPECT_FALSE(stage.print(*manager.get(), L"Umsatz")) << "without fkt_Init there is no job table";
            stage.init(*manager.get());
            stage.forgetErrors();
        }
        EXPECT_EQ(dllCanUnloadNow(), S_OK);
        FreeLibrary(module);
        ASSERT_EQ(GetModuleHandleW(L"KDVTDruck.dll"), nullptr);
    }

    Stage stage;
};

TEST_F(Unload, LeavesNothingBehindButTheThreadsRecord) {
    for (int i = 0; i < 20; ++i) // what the system makes once and keeps is there now
        loadFailUnload();
    const auto before = heapBytes();
    constexpr int kTimes = 1000;
    for (int i = 0; i < kTimes; ++i)
        loadFailUnload();
    // The C++ runtime's threads library keeps a record of a thread that has used it until the thread ends, about
    // one and a half kilobytes for each loading; the exceptions' memory, which it frees, is 19 to 75.
    EXPECT_LT((heapBytes() - before) / kTimes, 2048);
}

} // namespace
} // namespace kvtdruck::test
