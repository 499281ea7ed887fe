// Two apartments whose hosts and libraries do all that they should not, at random: they call back from everywhere,
// let go of what is at work, answer with garbage and with failures, register and unregister the DLL meanwhile.
// Nothing may crash, be called on another thread, or be left behind. KVT_STRESS_SEED repeats a run,
// KVT_STRESS_SECONDS says how long it lasts, otherwise half a minute, a minute in both architectures together.
#include "hive.h"
#include "stage.h"

#include <chrono>
#include <limits>
#include <mutex>
#include <random>

namespace kvtdruck::test {
namespace {

constexpr const wchar_t* kLists[] = {L"Umsatz",   L"MitUeber", L"Firma",    L"GemeinK",   L"NeutralA",
                                     L"MaKost",   L"MaZeit",   L"MaStKost", L"MaStZeit",  L"KalkKo",
                                     L"MatUeber", L"Bilanz",   L"BsEMa",    L"BsEStd",    L"BsEGes",
                                     L"KalkW",    L"WasWenn",  L"UmsatzHW", L"unbekannt", L""};

/// Registers and unregisters, one thread after another: the hives stand for the whole process.
class Registrar {
  public:
    void act(bool registers) {
        const std::scoped_lock one(turn_);
        EXPECT_EQ(
            callEntryPoint(dllPath(), registers ? "DllRegisterServer" : "DllUnregisterServer", machine_, user_),
            S_OK);
    }

  private:
    std::mutex turn_;
    const Hive machine_{L"StressMachine"};
    const Hive user_{L"StressUser"};
};

/// A host without any manners.
class Rogue {
  public:
    Rogue(Stage& stage, Registrar& registrar, unsigned long seed)
        : stage_(stage), registrar_(registrar), random_(seed) {
        stage_.interrupt = [this](const std::string&) {
            if (depth_ < 3 && one(150))
                act();
        };
        stage_.value = [this] { return garbage(); };
        stage_.failure = [this] { return failing_ && one(100) ? failure() : S_OK; };
    }

    void act() {
        ++depth_;
        if (one(500))
            registrar_.act(one(2));
        if (!manager_)
            manager_ = stage_.readyManager();
        auto* const manager = manager_.get(); // may be gone before its call is done
        switch (below(12)) {
        case 0:
            manager_ = {};
            break;
        case 1:
            stage_.init(*manager);
            break;
        case 2:
            stage_.terminate(*manager, window());
            break;
        case 3:
            callByName();
            break;
        case 4:
            callAdapter();
            break;
        case 5:
            failing_ = one(2);
            stage_.records = static_cast<long>(below(4));
            break;
        case 6:
            PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
            break;
        default:
            stage_.print(*manager, kLists[below(std::size(kLists))], static_cast<short>(below(4)), below(5),
                         window());
        }
        --depth_;
        ++acts;
    }

    long acts = 0;

  private:
    unsigned below(std::size_t bound) { return static_cast<unsigned>(random_() % bound); }
    bool one(unsigned in) { return below(in) == 0; }
    long window() { return static_cast<long>(below(4)) * 50; }

    void callByName() {
        const Ref<IDispatch> object(manager_.get());
        object->AddRef();
        std::vector<VARIANT> arguments(1 + below(9));
        for (auto& argument : arguments)
            argument = garbage();
        invoke(object.get(), arguments.size() == 1 ? L"Terminate_Preview" : L"fkt_Drucken", DISPATCH_METHOD,
               arguments);
        for (auto& argument : arguments)
            VariantClear(&argument);
    }

    void callAdapter() {
        const auto adapter = create<DruckFormular>(kFormularClass.clsid, kFormularClass.iid);
        auto* const called = adapter.get();
        Value loaded;
        EXPECT_EQ(called->fkt_Starte_Form(&loaded), S_OK);
        long judged = 0;
        EXPECT_EQ(called->LlPrintFields(&judged), S_OK);
        EXPECT_EQ(called->fkt_Form_Hide(), S_OK);
        EXPECT_EQ(called->LlPrintAbort(), S_OK);
        if (one(2)) {
            EXPECT_EQ(called->fkt_Form_Unload(), S_OK);
        }
    }

    HRESULT failure() {
        constexpr HRESULT kFailures[] = {E_FAIL,          E_NOTIMPL,          E_OUTOFMEMORY,    DISP_E_TYPEMISMATCH,
                                         DISP_E_OVERFLOW, RPC_E_DISCONNECTED, DISP_E_EXCEPTION, E_ABORT};
        return kFailures[below(std::size(kFailures))];
    }

    VARIANT garbage() {
        static const double kNumbers[] = {0,
                                          -1,
                                          1e300,
                                          -1e-300,
                                          std::numeric_limits<double>::infinity(),
                                          std::numeric_limits<double>::quiet_NaN(),
                                          2958466,
                                          37000.5};
        constexpr VARTYPE kPlain[] = {VT_EMPTY, VT_NULL, VT_BOOL, VT_I1, VT_UI1, VT_I2, VT_UI2,   VT_I4,
                                      VT_UI4,   VT_INT,  VT_UINT, VT_I8, VT_UI8, VT_CY, VT_ERROR, 77};
        VARIANT value{};
        switch (below(5)) {
        case 0:
            V_VT(&value) = VT_BSTR;
            V_BSTR(&value) = one(4) ? nullptr : SysAllocStringLen(nullptr, below(200));
            if (V_BSTR(&value) != nullptr)
                std::fill_n(V_BSTR(&value), SysStringLen(V_BSTR(&value)), static_cast<wchar_t>(random_()));
            break;
        case 1:
            V_VT(&value) = one(2) ? VT_DATE : VT_R8;
            V_R8(&value) = kNumbers[below(std::size(kNumbers))];
            break;
        case 2:
            V_VT(&value) = kPlain[below(std::size(kPlain))];
            V_I8(&value) = static_cast<LONGLONG>(random_());
            break;
        case 3:
            V_VT(&value) = one(2) ? VT_DISPATCH : VT_UNKNOWN;
            V_DISPATCH(&value) = one(3) ? nullptr : handedOver(stage_.array());
            break;
        default:
            V_VT(&value) = VT_I4;
            V_I4(&value) = static_cast<LONG>(below(14));
        }
        return value;
    }

    static IDispatch* handedOver(const Ref<IDispatch>& object) {
        object->AddRef();
        return object.get();
    }

    Stage& stage_;
    Registrar& registrar_;
    std::mt19937_64 random_;
    Ref<DruckManager> manager_;
    int depth_ = 0;
    bool failing_ = false;
};

class Stress : public HostTest {};

TEST_F(Stress, RoguesInTwoApartments) {
    const auto seed = setting(L"KVT_STRESS_SEED", static_cast<long>(GetTickCount()));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(setting(L"KVT_STRESS_SECONDS", 30));
    std::atomic<long> acts = 0;
    Registrar registrar;
    const auto run = [&](unsigned long own) {
        return apartment([&, own](Stage& stage) {
            {
                Rogue rogue(stage, registrar, own);
                while (std::chrono::steady_clock::now() < end) {
                    rogue.act();
                    stage.takeEngineCalls();
                    stage.forgetErrors();
                }
                acts += rogue.acts;
            }
            stage.interrupt = nullptr;
        });
    };
    std::printf("KVT_STRESS_SEED=%ld\n", seed);
    auto first = run(seed);
    auto second = run(seed + 1);
    first.join();
    second.join();
    std::printf("%ld acts\n", acts.load());
    EXPECT_GT(acts, 0);
    EXPECT_EQ(dllCanUnloadNow(), S_OK);
}

} // namespace
} // namespace kvtdruck::test
