#include "servers/control.h"

#include "com/counted.h"
#include "control/control.h"
#include "control/recording_control.h"
#include "servers/dispatch.h"
#include "servers/log_file.h"
#include "values/characters.h"
#include "values/runtime_error.h"

#include <ocidl.h>
#include <olectl.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>

namespace kvtdruck::test {
namespace {

constexpr auto kRecord = L"KVT_TEST_RECORD";
constexpr auto kHosting = L"KVT_TEST_HOSTING";
constexpr DISPID kPropertyThree = 3;
constexpr DISPID kPrintEnd = 1000;
constexpr std::int32_t kPreviewMode = 512;
constexpr StringView kLicenceKey = u"KVTDruck-Test";

constexpr Operation kOperations[] = {
    Operation::LlDefineFieldExt,      Operation::LlDefineVariableExt,  Operation::LlDefineFieldStart,
    Operation::LlDefineVariableStart, Operation::LlDefineLayout,       Operation::LlPrint,
    Operation::LlPrintFields,         Operation::LlPrintFieldsEnd,     Operation::LlPrintEnd,
    Operation::LlPreviewSetTempPath,  Operation::LlPreviewDeleteFiles, Operation::LlPreviewDisplay,
    Operation::LlPrintSetBoxText,     Operation::LlPrintWithBoxStart,  Operation::LlPrintOptionsDialog,
    Operation::LlSetPrinterToDefault, Operation::LlStgsysStorageOpen,  Operation::LlStgsysStorageClose,
    Operation::LlStgsysDrawPage};

/// Which argument of an operation is a window; it must be one that exists.
std::optional<std::size_t> windowArgument(Operation operation) {
    switch (operation) {
    case Operation::LlDefineLayout:
    case Operation::LlPrintOptionsDialog:
        return 0;
    case Operation::LlPreviewDisplay:
        return 2;
    case Operation::LlPrintWithBoxStart:
        return 4;
    default:
        return std::nullopt;
    }
}

/// The script of answers: what the N-th call of an operation is to say.
class Answers {
  public:
    Answers() {
        std::ifstream file(std::filesystem::path(fromUtf8(environment(L"KVT_TEST_ANSWERS"))));
        std::string operation;
        std::string turn;
        std::string answer;
        while (file >> operation >> turn >> answer)
            script_[{operation, turn == "*" ? 0 : std::stoi(turn)}] = answer;
    }

    /// The answer to this call of `operation`: a result code, or a run-time error that is raised.
    std::int32_t next(const std::string& operation) {
        auto answer = script_.find({operation, ++calls_[operation]});
        if (answer == script_.end())
            answer = script_.find({operation, 0});
        if (answer == script_.end())
            return kEngineSuccess;
        if (answer->second.starts_with('!'))
            throw RuntimeError(std::stol(answer->second.substr(1)), u"Fehler nach Drehbuch");
        return std::stoi(answer->second);
    }

  private:
    std::map<std::pair<std::string, int>, std::string> script_;
    std::map<std::string, int> calls_;
};

/// The file that a print into a preview leaves.
class Preview {
  public:
    void note(Operation operation, std::span<const Variant> arguments) {
        const auto text = [&](std::size_t index) { return *arguments[index].as<String>(); };
        if (operation == Operation::LlPreviewSetTempPath)
            folder_ = text(0);
        if (operation == Operation::LlPrintWithBoxStart && *arguments[2].as<std::int32_t>() == kPreviewMode)
            name_ = text(1).substr(text(1).rfind(u'\\') + 1);
        if (operation == Operation::LlPrintEnd && !name_.empty())
            std::ofstream(std::filesystem::path(folder_ + name_ + u".ll")) << "Vorschau\n";
    }

  private:
    String folder_;
    String name_;
};

void hosting(const std::string& step) {
    appendLine(kHosting, step);
}

class Control;

/// The control's embedding into a container.
class Embedding final : public IOleObject {
  public:
    Embedding(IUnknown& control, bool invisible, bool siteFirst)
        : control_(control), invisible_(invisible), siteFirst_(siteFirst) {}
    ~Embedding() { leaveSite(); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return control_.QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return control_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return control_.Release(); }

    HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override {
        leaveSite();
        site_ = site;
        if (site_ == nullptr) {
            hosting("SetClientSite NULL");
            return S_OK;
        }
        site_->AddRef();
        hosting("SetClientSite");
        tellAmbient("USERMODE", DISPID_AMBIENT_USERMODE);
        tellAmbient("LOCALEID", DISPID_AMBIENT_LOCALEID);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) override {
        *site = site_;
        if (site_ != nullptr)
            site_->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT) override {
        hosting("DoVerb " + std::to_string(verb) + (IsWindow(parent) != 0 ? " in a window" : " without a window"));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Close(DWORD option) override {
        hosting("Close " + std::to_string(option));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD, DWORD* status) override {
        *status = (invisible_ ? OLEMISC_INVISIBLEATRUNTIME : 0) | (siteFirst_ ? OLEMISC_SETCLIENTSITEFIRST : 0);
        return S_OK;
    }

    // What an embedding may leave out, and this one does.
    HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Update() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsUpToDate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetUserType(DWORD, LPOLESTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetExtent(DWORD, SIZEL*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetExtent(DWORD, SIZEL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IAdviseSink*, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) override { return E_NOTIMPL; }

  private:
    void leaveSite() {
        if (site_ != nullptr)
            site_->Release();
        site_ = nullptr;
    }

    void tellAmbient(const char* name, DISPID property) {
        IDispatch* ambient = nullptr;
        if (FAILED(site_->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&ambient)))) {
            hosting(std::string("no ambient ") + name);
            return;
        }
        DISPPARAMS none{};
        VARIANT value{};
        const auto result = ambient->Invoke(property, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                            &value, nullptr, nullptr);
        ambient->Release();
        hosting(FAILED(result)
                    ? std::string("no ambient ") + name
                    : std::string("ambient ") + name + " " + toUtf8(toText(fromVariant(value), germanLocale())));
        VariantClear(&value);
    }

    IUnknown& control_;
    bool invisible_;
    bool siteFirst_;
    IOleClientSite* site_ = nullptr;
};

/// A way of the control to keep its data, which counts with it.
template <class Interface>
class Persistence : public Interface {
  public:
    explicit Persistence(IUnknown& control) : control_(control) {}
    virtual ~Persistence() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return control_.QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return control_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return control_.Release(); }
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsDirty() override { return S_FALSE; }

  private:
    IUnknown& control_;
};

/// The control's initialisation as a new one.
class Initialisation final : public Persistence<IPersistStreamInit> {
  public:
    using Persistence::Persistence;

    HRESULT STDMETHODCALLTYPE Load(LPSTREAM) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Save(LPSTREAM, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitNew() override {
        hosting("InitNew");
        return S_OK;
    }
};

/// The initialisation of a control that keeps its data in a storage.
class StoredInitialisation final : public Persistence<IPersistStorage> {
  public:
    using Persistence::Persistence;

    HRESULT STDMETHODCALLTYPE Load(IStorage*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Save(IStorage*, BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SaveCompleted(IStorage*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE HandsOffStorage() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE InitNew(IStorage* storage) override {
        IStream* stream = nullptr;
        const bool usable =
            storage != nullptr && SUCCEEDED(storage->CreateStream(
                                      L"Data", STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, &stream));
        if (stream != nullptr)
            stream->Release();
        hosting(usable ? "InitNew in a storage" : "InitNew without a storage");
        return S_OK;
    }
};

class Control final : public Dispatch {
  public:
    Control()
        : kind_(environment(L"KVT_TEST_CONTROL")), embedding_(*this, kind_ == "invisible", kind_ == "site first"),
          initialisation_(*this), stored_(*this) {}

  protected:
    DISPID idOf(StringView name) override {
        return sameWord(name, nameOf(Operation::PrintEnd)) ? kPrintEnd : DISPID_UNKNOWN;
    }

    Variant invoke(DISPID member, WORD flags, std::span<VARIANT* const> arguments) override {
        std::vector<Variant> values;
        std::transform(arguments.begin(), arguments.end(), std::back_inserter(values),
                       [](const VARIANT* argument) { return fromVariant(*argument); });
        if (member == kPropertyThree && (flags & DISPATCH_PROPERTYPUT) != 0) {
            const auto value = toLong(values.at(0), germanLocale());
            appendLine(kRecord, "[3] = " + std::to_string(value));
            return {};
        }
        return carryOut(operationOf(member), values);
    }

    void* interfaceOf(REFIID iid) override {
        if (kind_ == "mute" && IsEqualIID(iid, IID_IDispatch))
            return nullptr;
        if (void* const own = Dispatch::interfaceOf(iid); own != nullptr || kind_ == "bare")
            return own;
        if (IsEqualIID(iid, IID_IOleObject))
            return &embedding_;
        if (kind_ == "stored")
            return IsEqualIID(iid, IID_IPersistStorage) ? &stored_ : nullptr;
        if (IsEqualIID(iid, IID_IPersistStreamInit) || IsEqualIID(iid, IID_IPersist))
            return &initialisation_;
        return nullptr;
    }

  private:
    static Operation operationOf(DISPID member) {
        if (member == kPrintEnd)
            return Operation::PrintEnd;
        const auto found = std::ranges::find(kOperations, static_cast<Operation>(member));
        if (found == std::end(kOperations))
            throw RuntimeError(ErrorNumber::MemberNotFound);
        return *found;
    }

    Variant carryOut(Operation operation, std::span<const Variant> values) {
        const auto arguments = recorded(operation, values);
        const auto name = nameOf(operation);
        try {
            const auto result = answers_.next(toUtf8(name));
            appendLine(kRecord, recordLine(name, arguments, result));
            preview_.note(operation, values);
            return result;
        } catch (const RuntimeError& error) {
            appendLine(kRecord, recordFailure(name, arguments, error.number()));
            throw;
        }
    }

    /// The arguments as the record shows them. Only texts and 32-bit numbers are right.
    static std::vector<Argument> recorded(Operation operation, std::span<const Variant> values) {
        std::vector<Argument> arguments;
        for (const auto& value : values) {
            const bool window = windowArgument(operation) == arguments.size();
            if (const auto* text = value.as<String>())
                arguments.emplace_back(StringView(*text));
            else if (const auto* number = value.as<std::int32_t>())
                arguments.push_back(
                    window && IsWindow(reinterpret_cast<HWND>(static_cast<std::intptr_t>(*number))) != 0
                        ? Argument(WindowHandle{*number})
                        : Argument(*number));
            else
                throw RuntimeError(ErrorNumber::TypeMismatch);
        }
        return arguments;
    }

    std::string kind_;
    Embedding embedding_;
    Initialisation initialisation_;
    StoredInitialisation stored_;
    Answers answers_;
    Preview preview_;
};

/// Gives controls; licensed ones only against the key.
class ControlFactory final : public com::Counted<IClassFactory2> {
  public:
    explicit ControlFactory(bool licensed) : licensed_(licensed) { ++liveObjects; }
    ~ControlFactory() override { --liveObjects; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        *object = nullptr;
        if (outer != nullptr)
            return CLASS_E_NOAGGREGATION;
        return licensed_ ? CLASS_E_NOTLICENSED : create(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        liveObjects += lock != 0 ? 1 : -1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetLicInfo(LICINFO* info) override {
        info->fRuntimeKeyAvail = TRUE;
        info->fLicVerified = FALSE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE RequestLicKey(DWORD, BSTR* key) override {
        *key = toBstr(kLicenceKey);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE CreateInstanceLic(IUnknown*, IUnknown*, REFIID iid, BSTR key,
                                                void** object) override {
        *object = nullptr;
        const bool right = StringView(reinterpret_cast<const char16_t*>(key), SysStringLen(key)) == kLicenceKey;
        hosting(right ? "created with a licence" : "wrong licence");
        return right ? create(iid, object) : CLASS_E_NOTLICENSED;
    }

  private:
    static HRESULT create(REFIID iid, void** object) {
        IUnknown* const control = createControl();
        const auto result = control->QueryInterface(iid, object);
        control->Release();
        return result;
    }

    void* interfaceOf(REFIID iid) override {
        if (IsEqualIID(iid, IID_IClassFactory))
            return this;
        return licensed_ || IsEqualIID(iid, IID_IUnknown) ? Counted::interfaceOf(iid) : nullptr;
    }

    bool licensed_;
};

} // namespace

IUnknown* createControl() {
    return new Control;
}

IClassFactory* createControlFactory() {
    return new ControlFactory(environment(L"KVT_TEST_CONTROL") == "licensed");
}

} // namespace kvtdruck::test
