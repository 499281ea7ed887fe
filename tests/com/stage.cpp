#include "stage.h"

#include "control/control.h"

#include <algorithm>

namespace kvtdruck::test {
namespace {

constexpr const wchar_t* kPlayed[] = {L"ListLabel.ListLabel",    L"KVTZUG.clsZugFirmaAllg",
                                      L"KVTZUG.clsZugUmsatz",    L"KVTZUG.clsZugFirmaJahr",
                                      L"KVTZUG.clsZugFeiertage", L"KVTZUG.clsZugMitarbeiter",
                                      L"KVTZUG.clsZugKonten",    L"KVTZUG.clsZugMitarbeiterMonate",
                                      L"KVTZUG.clsZugKosten",    L"KVTZUG.clsZugMaterial",
                                      L"KVTTest.clsFehler"};
constexpr const wchar_t* kControl = kPlayed[0];
constexpr DISPID kFirstName = 1000;

std::string narrow(std::wstring_view text) {
    return toUtf8({reinterpret_cast<const char16_t*>(text.data()), text.size()});
}

std::string textOf(const VARIANT& value) {
    VARIANT text{};
    if (FAILED(VariantChangeType(&text, const_cast<VARIANT*>(&value), 0, VT_BSTR)))
        return "?";
    auto result = narrow({V_BSTR(&text), SysStringLen(V_BSTR(&text))});
    VariantClear(&text);
    return result;
}

double numberOf(const VARIANT& value) {
    VARIANT number{};
    return SUCCEEDED(VariantChangeType(&number, const_cast<VARIANT*>(&value), 0, VT_R8)) ? V_R8(&number) : 0;
}

VARIANT truth(bool value) {
    VARIANT result{};
    V_VT(&result) = VT_BOOL;
    V_BOOL(&result) = value ? VARIANT_TRUE : VARIANT_FALSE;
    return result;
}

VARIANT number(double value) {
    VARIANT result{};
    V_VT(&result) = VT_R8;
    V_R8(&result) = value;
    return result;
}

} // namespace

/// One played object. It answers to every name but the engine's unknown ones.
class Actor final : public IDispatch {
  public:
    Actor(Stage& stage, std::wstring kind) : stage_(stage), kind_(std::move(kind)) {
        ++stage_.living_;
        if (kind_ == kControl) {
            job_ = stage_.engineCalls_.size();
            stage_.engineCalls_.emplace_back();
        }
    }
    virtual ~Actor() { --stage_.living_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        noteThread();
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch);
        *object = known ? this : nullptr;
        if (!known)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        noteThread();
        return ++references_;
    }
    ULONG STDMETHODCALLTYPE Release() override {
        noteThread();
        const auto left = --references_;
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        noteThread();
        const std::wstring name(names[0]);
        if (name == L"DrForm")
            return DISP_E_UNKNOWNNAME;
        const auto found = std::ranges::find(names_, name);
        *ids = kFirstName + static_cast<DISPID>(found - names_.begin());
        if (found == names_.end())
            names_.push_back(name);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO*, UINT*) override {
        noteThread();
        const auto name = nameOf(member);
        // Called with what it was given, and answered only then: what the host does meanwhile shows.
        std::vector<std::string> arguments;
        for (UINT i = parameters->cArgs; i > 0; --i)
            arguments.push_back(
                kind_ == kControl || name == "fkt_Fehlermeldung" ? argumentText(parameters->rgvarg[i - 1]) : "");
        const auto first = parameters->cArgs == 0 ? VARIANT{} : parameters->rgvarg[parameters->cArgs - 1];
        const auto firstNumber = V_VT(&first) == VT_DISPATCH || V_VT(&first) == VT_UNKNOWN ? 0 : numberOf(first);
        ++stage_.calls_;
        if (stage_.interrupt)
            stage_.interrupt(narrow(kind_.substr(kind_.find(L'.') + 1)) + "." + name);
        auto answer = this->answer(name, arguments, firstNumber);
        const auto failed = stage_.failure ? stage_.failure() : S_OK;
        if (FAILED(failed) || result == nullptr || (flags & DISPATCH_PROPERTYPUT) != 0)
            VariantClear(&answer);
        else
            *result = answer;
        return failed;
    }

  private:
    std::string nameOf(DISPID member) const {
        if (member >= kFirstName)
            return narrow(names_.at(static_cast<std::size_t>(member - kFirstName)));
        return kind_ == kControl ? toUtf8(kvtdruck::nameOf(static_cast<Operation>(member))) : "?";
    }

    // A window differs from run to run. Small numbers are none, though the system takes them for short forms of
    // windows.
    static std::string argumentText(const VARIANT& argument) {
        if (V_VT(&argument) == VT_I4 && V_I4(&argument) > 0xffff &&
            IsWindow(reinterpret_cast<HWND>(static_cast<LONG_PTR>(V_I4(&argument)))))
            return "hWnd";
        return textOf(argument);
    }

    VARIANT answer(const std::string& name, const std::vector<std::string>& arguments, double first) {
        std::string line = name;
        for (const auto& argument : arguments)
            line += "|" + argument;
        if (kind_ == kControl) {
            stage_.engineCalls_[job_].push_back(line);
            return number(0);
        }
        if (name == "fkt_Fehlermeldung") {
            stage_.errors_.push_back(line);
            return truth(true);
        }
        if (name == "EOF")
            return truth(position_ >= stage_.records);
        if (name == "MoveFirst")
            position_ = 0;
        if (name == "MoveNext")
            ++position_;
        if (name.starts_with("Lese"))
            company_ = first;
        if (name == "Verbinde" || name.starts_with("Lese") || name.starts_with("Move"))
            return truth(true);
        if (name == "Count")
            return number(static_cast<double>(stage_.records));
        if (stage_.value)
            return stage_.value();
        if (name == "Value")
            return arguments.size() == 2 && first == 0 ? truth(true) : number(first + 3);
        int sum = 0;
        for (const char letter : name)
            sum = (sum * 7 + static_cast<unsigned char>(letter)) % 1000;
        // A year or month among them has to be a 16-bit integer.
        return number(company_ * 2000 + sum + 0.25 * static_cast<double>(position_));
    }

    void noteThread() {
        if (GetCurrentThreadId() != thread_)
            ++stage_.strayCalls_;
    }

    Stage& stage_;
    std::wstring kind_;
    const DWORD thread_ = GetCurrentThreadId();
    std::atomic<ULONG> references_ = 1;
    std::vector<std::wstring> names_;
    std::size_t job_ = 0;
    double company_ = 0;
    long position_ = 0;
};

class Stage::Factory final : public LastingObject<IClassFactory> {
  public:
    Factory(Stage& stage, const wchar_t* progId) : stage_(stage), kind_(progId) {
        CLSID clsid{};
        EXPECT_EQ(CLSIDFromProgID(progId, &clsid), S_OK);
        EXPECT_EQ(CoRegisterClassObject(clsid, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_), S_OK);
    }
    ~Factory() override { CoRevokeClassObject(cookie_); }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        return stage_.make(kind_)->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  private:
    Stage& stage_;
    std::wstring kind_;
    DWORD cookie_ = 0;
};

Stage::Stage() {
    for (const auto* const progId : kPlayed)
        factories_.push_back(new Factory(*this, progId));
}

std::vector<std::string> Stage::takeEngineCalls() {
    return engineCalls_.empty() ? std::vector<std::string>() : std::exchange(engineCalls_.back(), {});
}

Stage::~Stage() {
    for (auto* const factory : factories_)
        delete factory;
}

Ref<IDispatch> Stage::make(const std::wstring& kind) {
    return Ref<IDispatch>(new Actor(*this, kind));
}

void Stage::init(DruckManager& manager) {
    const auto open = connection();
    IDispatch* lent = open.get();
    VARIANT_BOOL result = VARIANT_TRUE;
    EXPECT_EQ(manager.fkt_Init(&lent, &result), S_OK);
    EXPECT_EQ(result, VARIANT_FALSE);
}

Ref<DruckManager> Stage::readyManager() {
    auto ready = create<DruckManager>(kManagerClass.clsid, kManagerClass.iid);
    init(*ready.get());
    return ready;
}

bool Stage::print(DruckManager& manager, const wchar_t* list, short mode, double company, long window) {
    const auto selection = array();
    IDispatch* lent = selection.get();
    Text folder(applicationFolder);
    Text name(list);
    VARIANT_BOOL chooser = VARIANT_FALSE;
    short product = 1;
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(manager.fkt_Drucken(&mode, &company, &lent, &folder, &name, &chooser, &window, &product, &result),
              S_OK);
    return result == VARIANT_TRUE;
}

bool Stage::terminate(DruckManager& manager, long window) {
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(manager.Terminate_Preview(&window, &result), S_OK);
    return result == VARIANT_TRUE;
}

HRESULT dllCanUnloadNow() {
    using Answer = HRESULT WINAPI();
    const HMODULE module = GetModuleHandleW(L"KDVTDruck.dll");
    auto* const asked =
        reinterpret_cast<Answer*>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
    return asked != nullptr ? asked() : S_OK;
}

std::thread apartment(std::function<void(Stage&)> work) {
    return std::thread([work = std::move(work)] {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        {
            Stage stage;
            work(stage);
            EXPECT_EQ(stage.living(), 0) << "something was never let go of";
            EXPECT_EQ(stage.strayCalls(), 0) << "called on another thread than its own";
        }
        CoUninitialize();
    });
}

bool pumpUntil(const std::function<bool()>& done) {
    const auto handle = [] {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    };
    return eventually([&] {
        handle();
        return done();
    });
}

} // namespace kvtdruck::test
