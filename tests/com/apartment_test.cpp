// Several apartments at once, each with a host of its own; and objects that are called from one apartment to
// another.
#include "stage.h"

namespace kvtdruck::test {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class Apartments : public HostTest {
  protected:
    /// What the engine is given for this company.
    static std::vector<std::string> recordOf(Stage& stage, double company) {
        const auto manager = stage.readyManager();
        EXPECT_TRUE(stage.print(*manager.get(), L"Umsatz", 0, company));
        return stage.takeEngineCalls();
    }

    /// Prints again and again as the host of one apartment, in which no other one shows.
    static void workDay(Stage& stage, double company, long prints) {
        const auto expected = recordOf(stage, company);
        auto manager = stage.readyManager();
        long wrong = 0;
        for (long i = 0; i < prints; ++i) {
            if (i % 50 == 49)
                manager = stage.readyManager();
            wrong += stage.print(*manager.get(), L"Umsatz", 0, company, 100 + i % 3) ? 0 : 1;
            wrong += stage.takeEngineCalls() == expected ? 0 : 1;
            wrong += i % 7 != 0 || stage.terminate(*manager.get(), 100 + i % 3) ? 0 : 1;
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_THAT(stage.errors(), IsEmpty());
        manager = {};
        EXPECT_EQ(ownWindows(), 0) << "forms were left behind";
    }

    static void sideBySide(long count, long prints) {
        std::vector<std::thread> threads;
        for (long i = 0; i < count; ++i)
            threads.push_back(
                apartment([=](Stage& stage) { workDay(stage, static_cast<double>(i) + 1, prints / count); }));
        for (auto& thread : threads)
            thread.join();
        EXPECT_EQ(dllCanUnloadNow(), S_OK);
    }

    /// How many prints all apartments of a test share.
    const long prints_ = setting(L"KVT_TEST_PRINTS", 2000);
};

TEST_F(Apartments, TwoPrintSideBySide) {
    sideBySide(2, prints_);
}

TEST_F(Apartments, EightPrintSideBySide) {
    sideBySide(8, prints_);
}

TEST_F(Apartments, EachHasItsOwnJobTableAndErrorReport) {
    Stage here;
    const auto ready = here.readyManager();
    EXPECT_TRUE(here.print(*ready.get(), L"Umsatz"));
    apartment([](Stage& there) {
        const auto fresh = create<DruckManager>(kManagerClass.clsid, kManagerClass.iid);
        EXPECT_FALSE(there.print(*fresh.get(), L"Umsatz")) << "nobody has made a job table here";
        EXPECT_THAT(there.errors(), SizeIs(1));
    }).join();
    EXPECT_TRUE(here.print(*ready.get(), L"Umsatz"));
    EXPECT_THAT(here.errors(), IsEmpty());
    EXPECT_EQ(here.strayCalls(), 0);
}

TEST_F(Apartments, StateEndsWithTheLastObject) {
    Stage stage;
    {
        const auto manager = stage.readyManager();
        EXPECT_TRUE(stage.print(*manager.get(), L"Umsatz"));
        EXPECT_FALSE(
            stage.print(*create<DruckManager>(kManagerClass.clsid, kManagerClass.iid).get(), L"unbekannt"));
        EXPECT_GT(stage.living(), 0);
    }
    EXPECT_EQ(stage.living(), 0);
    EXPECT_EQ(dllCanUnloadNow(), S_OK);
    const auto next = create<DruckManager>(kManagerClass.clsid, kManagerClass.iid);
    EXPECT_FALSE(stage.print(*next.get(), L"Umsatz")) << "the job table is gone";
}

TEST_F(Apartments, MultithreadedThreadMayAskWhetherTheDllCanGo) {
    Stage stage;
    const auto asked = [] {
        HRESULT answer = E_FAIL;
        std::thread([&] {
            EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
            answer = dllCanUnloadNow();
            CoFreeUnusedLibraries();
            CoUninitialize();
        }).join();
        return answer;
    };
    {
        const auto manager = stage.readyManager();
        EXPECT_TRUE(stage.print(*manager.get(), L"Umsatz"));
        EXPECT_EQ(asked(), S_FALSE);
        EXPECT_TRUE(stage.print(*manager.get(), L"Umsatz")) << "asking has taken nothing away";
    }
    EXPECT_EQ(asked(), S_OK);
    EXPECT_EQ(stage.strayCalls(), 0) << "something was let go of on the thread that asked";
}

TEST_F(Apartments, PointerBroughtToAnotherThreadWithoutComIsRefused) {
    Stage stage;
    const auto manager = stage.readyManager();
    auto* const raw = manager.get();
    const auto before = stage.calls();
    std::thread([&] {
        long window = 100;
        VARIANT_BOOL result = VARIANT_TRUE;
        EXPECT_EQ(raw->Terminate_Preview(&window, &result), RPC_E_WRONG_THREAD);
        EXPECT_EQ(result, VARIANT_FALSE);
    }).join();
    EXPECT_EQ(stage.calls(), before);
    EXPECT_TRUE(stage.print(*manager.get(), L"Umsatz"));
}

// The marshalled pointer leads every call back to the thread of the object, with all that it calls.
TEST_F(Apartments, ComLeadsCallsToTheObjectsThread) {
    Stage stage;
    const auto manager = stage.readyManager();
    EXPECT_TRUE(stage.print(*manager.get(), L"Umsatz"));
    IStream* stream = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(kManagerClass.iid, manager.get(), &stream), S_OK);
    std::atomic<bool> done = false;
    auto other = apartment([&](Stage& there) {
        void* proxy = nullptr;
        const auto unmarshalled = CoGetInterfaceAndReleaseStream(stream, kManagerClass.iid, &proxy);
        EXPECT_EQ(unmarshalled, S_OK);
        if (SUCCEEDED(unmarshalled)) {
            const Ref<DruckManager> called(static_cast<DruckManager*>(proxy));
            EXPECT_NE(called.get(), manager.get());
            EXPECT_TRUE(there.terminate(*called.get()));
            EXPECT_FALSE(there.print(*called.get(), L"unbekannt"));
        }
        done = true;
    });
    EXPECT_TRUE(pumpUntil([&] { return done.load(); }));
    other.join();
    EXPECT_EQ(stage.strayCalls(), 0);
}

TEST_F(Apartments, MultithreadedHostIsServedOnAThreadOfComs) {
    std::thread([] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
        {
            const auto byName = create<IDispatch>(kManagerClass.clsid, IID_IDispatch);
            Value result;
            EXPECT_EQ(invoke(byName.get(), L"Terminate_Preview", DISPATCH_METHOD, {Value(100L)}, &result), S_OK);
            EXPECT_EQ(result.boolVal, VARIANT_TRUE);
            const auto bound = create<DruckManager>(kManagerClass.clsid, kManagerClass.iid);
            long window = 100;
            VARIANT_BOOL ended = VARIANT_FALSE;
            if (bound) {
                EXPECT_EQ(bound->Terminate_Preview(&window, &ended), S_OK);
            }
            EXPECT_EQ(ended, VARIANT_TRUE);
            EXPECT_EQ(dllCanUnloadNow(), S_FALSE);
        }
        CoUninitialize();
    }).join();
}

// Last: what such a host leaves behind stays for good, and the DLL with it.
TEST_F(Apartments, ThreadThatEndsWithItsObjectsUnreleasedIsNotCalledAgain) {
    Stage* left = nullptr; // outlives everything, as what it lent does
    std::thread([&] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        left = new Stage;
        auto forgotten = left->readyManager();
        EXPECT_TRUE(left->print(*forgotten.get(), L"Umsatz"));
        forgotten.get()->AddRef();
        CoUninitialize();
    }).join();
    const auto calls = left->calls();
    apartment([](Stage& stage) { workDay(stage, 1, 10); }).join();
    EXPECT_EQ(dllCanUnloadNow(), S_FALSE);
    EXPECT_EQ(left->calls(), calls);
    EXPECT_EQ(left->strayCalls(), 0);
}

} // namespace
} // namespace kvtdruck::test
