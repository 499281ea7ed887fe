// com_print DLL DATABASE: what a print through the DLL costs, against two loops of the same calls by dispatch id,
// with the same arguments, known beforehand:
//   caller   what any caller has to do: makes a hidden window, the control and the readers, a COM string for every
//            text that is handed over, the calls, and lets go of all
//   bare     the calls alone: one IDispatch::Invoke each and the clearing of its result; nothing is made
// Once with control and readers that answer at once, so that nothing but the calls and the component itself is
// measured, and once with those of the test servers, which must be registered. bench/com makes the database and
// runs it.
#include "../src/com/com_ptr.h"
#include "../src/com/counted.h"
#include "../tests/com/lasting_object.h"
#include "../tests/com/original_interfaces.h"

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace {

using kvtdruck::com::ComPtr;
using kvtdruck::com::Counted;
using kvtdruck::test::DruckManager;
using kvtdruck::test::LastingObject;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "com_print: %s\n", what);
    std::exit(1);
}

void expect(HRESULT result, const char* what) {
    if (FAILED(result))
        fail(what);
}

/// One call as a server got it.
struct Call {
    ComPtr<IDispatch> object;
    DISPID member;
    WORD flags;
    std::vector<VARIANT> arguments; ///< in Automation's order
};

bool recording = false;
std::vector<Call> recorded;
long records = 0;

/// Stands before an object and writes down what it is called with.
class Recorder final : public Counted<IDispatch> {
  public:
    explicit Recorder(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return object_->GetTypeInfoCount(count); }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override {
        return object_->GetIDsOfNames(iid, names, count, locale, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT* wrong) override {
        Call call{object_, member, flags, std::vector<VARIANT>(parameters->cArgs)};
        for (UINT i = 0; i < parameters->cArgs; ++i)
            expect(VariantCopyInd(&call.arguments[i], &parameters->rgvarg[i]), "an argument cannot be copied");
        recorded.push_back(std::move(call));
        return object_->Invoke(member, iid, locale, flags, parameters, result, exception, wrong);
    }

  private:
    ComPtr<IDispatch> object_;
};

/// The object, or while a print is recorded one that stands before it.
ComPtr<IDispatch> watched(const ComPtr<IDispatch>& object) {
    if (!recording)
        return object;
    ComPtr<IDispatch> recorder;
    *recorder.put() = new Recorder(object);
    return recorder;
}

/// An object that has every member: a truth for what reads and connects, a text for names, a number for all else.
/// After `records` steps it is at its end.
class Server final : public LastingObject<IDispatch> {
  public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        const std::wstring name(names[0]);
        if (name == L"EOF")
            *ids = kEnd;
        else if (name == L"MoveNext")
            *ids = kNext;
        else if (name == L"MoveFirst")
            *ids = kFirst;
        else if (name == L"Waehrung")
            *ids = kText;
        else if (name.starts_with(L"Lese") || name == L"Verbinde" || name == L"Value")
            *ids = kTruth;
        else
            *ids = kNumber;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                     UINT*) override {
        switch (member) {
        case kNext:
            ++position_;
            return S_OK;
        case kFirst:
            position_ = 0;
            return S_OK;
        case kEnd:
            return truth(result, position_ >= records);
        case kTruth:
            return truth(result, true);
        case kText:
            V_VT(result) = VT_BSTR;
            V_BSTR(result) = SysAllocString(L"EUR");
            return S_OK;
        case kNumber:
            V_VT(result) = VT_R8;
            V_R8(result) = 1234.56;
            return S_OK;
        default: // the control's numbered operations
            if (result != nullptr) {
                V_VT(result) = VT_I4;
                V_I4(result) = 0;
            }
            return S_OK;
        }
    }

  private:
    enum Member : DISPID { kEnd = 5001, kNext, kFirst, kTruth, kText, kNumber };

    static HRESULT truth(VARIANT* result, bool value) {
        if (result != nullptr) {
            V_VT(result) = VT_BOOL;
            V_BOOL(result) = value ? VARIANT_TRUE : VARIANT_FALSE;
        }
        return S_OK;
    }

    long position_ = 0;
};

ComPtr<IDispatch> newServer() {
    static std::deque<Server> servers;
    return ComPtr<IDispatch>(&servers.emplace_back());
}

/// Offers the objects of a registered class, or empty servers in their place.
class Factory final : public LastingObject<IClassFactory> {
  public:
    explicit Factory(REFCLSID clsid) {
        expect(CoGetClassObject(clsid, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                                reinterpret_cast<void**>(&registered_)),
               "the test servers are not registered");
        DWORD cookie = 0;
        expect(CoRegisterClassObject(clsid, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
               "a class cannot be offered");
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        ComPtr<IDispatch> created;
        if (empty)
            created = newServer();
        else
            expect(registered_->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(created.put())),
                   "a test server cannot be made");
        return watched(created)->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

    static inline bool empty = true;

  private:
    IClassFactory* registered_ = nullptr;
};

CLSID classOf(const wchar_t* progId) {
    CLSID clsid{};
    expect(CLSIDFromProgID(progId, &clsid), "the test servers are not registered");
    return clsid;
}

ComPtr<IDispatch> create(const wchar_t* progId) {
    ComPtr<IDispatch> object;
    expect(CoCreateInstance(classOf(progId), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                            reinterpret_cast<void**>(object.put())),
           "an object cannot be made");
    return object;
}

DruckManager* createManager(const wchar_t* dll) {
    const HMODULE module = LoadLibraryW(dll);
    if (module == nullptr)
        fail("the DLL cannot be loaded");
    using ClassObject = HRESULT WINAPI(REFCLSID, REFIID, void**);
    auto* const classObject =
        reinterpret_cast<ClassObject*>(reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    IClassFactory* factory = nullptr;
    const auto& wanted = kvtdruck::test::kManagerClass;
    expect(classObject(wanted.clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory)), "no class object");
    DruckManager* manager = nullptr;
    expect(factory->CreateInstance(nullptr, wanted.iid, reinterpret_cast<void**>(&manager)), "no manager");
    factory->Release();
    return manager;
}

/// What the host hands over.
struct Host {
    ComPtr<IDispatch> connection;
    ComPtr<IDispatch> selection;
};

void print(DruckManager& manager, const Host& host) {
    IDispatch* connection = host.connection.get();
    const auto selection = watched(host.selection);
    IDispatch* lent = selection.get();
    VARIANT_BOOL result = VARIANT_FALSE;
    short mode = 0;
    auto company = static_cast<double>(records);
    BSTR folder = SysAllocString(L"C:\\Bench");
    BSTR list = SysAllocString(L"Umsatz");
    VARIANT_BOOL chooser = VARIANT_FALSE;
    long window = 1;
    short product = 1;
    expect(manager.fkt_Init(&connection, &result), "fkt_Init");
    expect(manager.fkt_Drucken(&mode, &company, &lent, &folder, &list, &chooser, &window, &product, &result),
           "fkt_Drucken");
    SysFreeString(folder);
    SysFreeString(list);
    if (result != VARIANT_TRUE)
        fail("the print has failed");
}

constexpr const wchar_t* kServed[] = {L"ListLabel.ListLabel", L"KVTZUG.clsZugFirmaAllg", L"KVTZUG.clsZugUmsatz"};

/// One call, and its result let go.
void make(const Call& call, VARIANT* arguments) {
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = (call.flags & DISPATCH_PROPERTYPUT) != 0;
    DISPPARAMS parameters{arguments, puts ? &put : nullptr, static_cast<UINT>(call.arguments.size()),
                          puts ? 1U : 0U};
    VARIANT result;
    VariantInit(&result);
    EXCEPINFO exception{};
    UINT wrong = 0;
    call.object->Invoke(call.member, IID_NULL, LOCALE_USER_DEFAULT, call.flags, &parameters, &result, &exception,
                        &wrong);
    VariantClear(&result);
}

/// The bare loop.
void repeatBare(std::vector<Call>& calls) {
    for (auto& call : calls)
        make(call, call.arguments.data());
}

/// The loop of any caller.
void repeat(const std::vector<Call>& calls) {
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                        CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr, nullptr);
    for (const auto* const progId : kServed) {
        CLSID clsid{};
        ComPtr<IDispatch> object;
        expect(CLSIDFromProgID(progId, &clsid), "a name is not registered");
        expect(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(object.put())),
               "an object cannot be made");
    }
    VARIANT arguments[10];
    for (const auto& call : calls) {
        const auto count = call.arguments.size();
        for (std::size_t i = 0; i < count; ++i) {
            arguments[i] = call.arguments[i];
            if (V_VT(&arguments[i]) == VT_BSTR)
                V_BSTR(&arguments[i]) =
                    SysAllocStringLen(V_BSTR(&arguments[i]), SysStringLen(V_BSTR(&arguments[i])));
        }
        make(call, arguments);
        for (std::size_t i = 0; i < count; ++i)
            if (V_VT(&arguments[i]) == VT_BSTR)
                SysFreeString(V_BSTR(&arguments[i]));
    }
    DestroyWindow(window);
}

template <class Work>
double microseconds(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

/// Best of many turns, taken in alternation, so that all see the same machine.
void compare(DruckManager& manager, const Host& host, long count) {
    records = count;
    recording = true;
    print(manager, host);
    recording = false;
    double dll = 1e30;
    double caller = 1e30;
    double bare = 1e30;
    const int turns = static_cast<int>(std::max(15L, 3000 / count));
    for (int i = 0; i < turns; ++i) {
        dll = std::min(dll, microseconds([&] { print(manager, host); }));
        caller = std::min(caller, microseconds([&] { repeat(recorded); }));
        bare = std::min(bare, microseconds([&] { repeatBare(recorded); }));
    }
    std::printf("%8ld %10zu %12.1f %12.1f %12.1f %14.2f %18.3f\n", count, recorded.size(), dll, caller, bare,
                dll / caller, (dll - bare) / static_cast<double>(recorded.size()));
    for (auto& call : recorded) {
        for (auto& argument : call.arguments)
            VariantClear(&argument);
    }
    recorded.clear();
}

void compareAll(DruckManager& manager, const Host& host, const char* title) {
    std::printf("%s, microseconds\n records      calls          DLL       caller         bare   DLL to caller"
                "  per call over bare\n",
                title);
    for (const long count : {1L, 100L, 10'000L})
        compare(manager, host, count);
}

/// Calls a member of a test server.
void tell(const ComPtr<IDispatch>& object, const wchar_t* name, WORD flags, std::vector<VARIANT> reversed) {
    std::wstring member(name);
    LPOLESTR names[] = {member.data()};
    DISPID id = DISPID_UNKNOWN;
    expect(object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id), "a test server lacks a member");
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = (flags & DISPATCH_PROPERTYPUT) != 0;
    DISPPARAMS parameters{reversed.data(), puts ? &put : nullptr, static_cast<UINT>(reversed.size()),
                          puts ? 1U : 0U};
    expect(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, nullptr, nullptr, nullptr),
           "a test server refuses a call");
}

VARIANT number(long value) {
    VARIANT variant{};
    V_VT(&variant) = VT_I4;
    V_I4(&variant) = value;
    return variant;
}

/// A connection to the database and a selection of all years.
Host referenceHost(const std::wstring& database) {
    Host host{create(L"KVTTest.Connection"), create(L"XArrayDBObject.XArrayDB")};
    VARIANT text{};
    V_VT(&text) = VT_BSTR;
    V_BSTR(&text) = SysAllocString((L"Driver=SQLite3;Database=" + database).c_str());
    tell(host.connection, L"ConnectionString", DISPATCH_PROPERTYPUT, {text});
    VariantClear(&text);
    VARIANT all{};
    V_VT(&all) = VT_BOOL;
    V_BOOL(&all) = VARIANT_TRUE;
    tell(host.selection, L"ReDim", DISPATCH_METHOD, {number(2), number(0), number(0), number(0)});
    tell(host.selection, L"Value", DISPATCH_PROPERTYPUT, {all, number(0), number(0)});
    return host;
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 3)
        fail("com_print DLL DATABASE");
    expect(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "COM cannot be used");
    std::vector<std::unique_ptr<Factory>> factories;
    for (const auto* const progId : kServed)
        factories.push_back(std::make_unique<Factory>(classOf(progId)));
    DruckManager* const manager = createManager(argv[1]);
    compareAll(*manager, {newServer(), newServer()}, "control and readers that answer at once");
    Factory::empty = false;
    compareAll(*manager, referenceHost(argv[2]), "control and readers of the test servers");
    return 0;
}
