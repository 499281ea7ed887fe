// A long day of printing leaves nothing behind: objects, COM memory and strings, handles, windows, and the DLL
// itself.
#include "host.h"
#include "lasting_object.h"

#include <atomic>

namespace kvtdruck::test {
namespace {

/// Counts the blocks of COM's allocator that are in use: strings, variants, safe arrays.
class MemoryWatch final : public LastingObject<IMallocSpy> {
  public:
    long blocks() const { return blocks_; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override { return size; }
    void* STDMETHODCALLTYPE PostAlloc(void* block) override {
        blocks_ += block != nullptr ? 1 : 0;
        return block;
    }
    void* STDMETHODCALLTYPE PreFree(void* block, BOOL spyed) override {
        blocks_ -= block != nullptr && spyed != 0 ? 1 : 0;
        return block;
    }
    void STDMETHODCALLTYPE PostFree(BOOL) override {}
    SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** newBlock, BOOL spyed) override {
        *newBlock = block;
        blocks_ -= block != nullptr && spyed != 0 ? 1 : 0;
        return size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL) override {
        blocks_ += block != nullptr ? 1 : 0;
        return block;
    }
    void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL) override { return block; }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL) override { return block; }
    int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int actual) override { return actual; }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}

  private:
    std::atomic<long> blocks_ = 0;
};

/// A function of a library that no import library offers, or whose module comes and goes.
template <class Function>
Function* function(const wchar_t* library, const char* name) {
    const HMODULE module = GetModuleHandleW(library);
    auto* const found = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

struct Balance {
    long serverObjects;
    long blocks;
    long handles;
    long windows;

    bool operator==(const Balance&) const = default;
};

void PrintTo(const Balance& balance, std::ostream* stream) {
    *stream << balance.serverObjects << " objects, " << balance.blocks << " blocks, " << balance.handles
            << " handles, " << balance.windows << " windows";
}

class Leaks : public HostTest {
  protected:
    Leaks() {
        function<void()>(L"oleaut32.dll", "SetOaNoCache")();
        EXPECT_EQ(CoRegisterMallocSpy(&memory_), S_OK);
        SetEnvironmentVariableW(L"KVT_TEST_RECORD", nullptr);
    }
    ~Leaks() override { CoRevokeMallocSpy(); }

    Balance balance() const {
        return {function<long()>(L"kvt_test_servers.dll", "LiveObjects")(), memory_.blocks(), openHandles(),
                ownWindows()};
    }

    /// Prints by several managers, with every kind of failure in between.
    void printALot(long prints) {
        for (long i = 0; i < prints;) {
            const auto worker = readyManager();
            for (int inRow = 0; inRow < 10; ++inRow, ++i)
                printOnce(*worker.get(), i);
        }
    }

  private:
    void printOnce(DruckManager& worker, long turn) {
        answer(turn % 7 == 3 ? "LlPrintFields 2 -5\n" : turn % 7 == 5 ? "LlDefineVariableExt * !5\n" : "");
        switch (turn % 5) {
        case 1:
            EXPECT_FALSE(print(worker, L"Umsatz", 0, 4711));
            break;
        case 2:
            EXPECT_FALSE(print(worker, L"Unbekannt"));
            break;
        case 3:
            offerControl(L"licensed");
            print(worker, L"Umsatz", 2);
            offerControl(L"");
            break;
        default:
            print(worker, L"Umsatz", 0, 1, turn % 3);
        }
    }

    MemoryWatch memory_;
};

TEST_F(Leaks, ThousandPrintsWithFailuresMixedIn) {
    printALot(50); // what is made once and kept is there now
    const auto before = balance();
    printALot(setting(L"KVT_TEST_PRINTS", 1000));
    EXPECT_EQ(balance(), before);
}

TEST_F(Leaks, TheDllCanBeUnloadedAfterwards) {
    printALot(10);
    const auto canUnload = function<HRESULT WINAPI()>(L"KDVTDruck.dll", "DllCanUnloadNow");
    {
        const auto held = manager();
        EXPECT_EQ(canUnload(), S_FALSE);
    }
    EXPECT_EQ(canUnload(), S_OK);
    CoFreeUnusedLibrariesEx(0, 0);
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_EQ(GetModuleHandleW(L"KDVTDruck.dll"), nullptr);
    EXPECT_EQ(ownWindows(), 0);
    printALot(10);
    EXPECT_NE(GetModuleHandleW(L"KDVTDruck.dll"), nullptr);
}

} // namespace
} // namespace kvtdruck::test
