// com_print DLL: what a print through the DLL costs, against a bare loop that makes the same calls to the same
// control and readers by dispatch id with the same arguments. Control and readers answer at once, so that nothing
// but the calls and the component itself is measured. Needs the ProgIDs that the test servers register; bench/com
// runs it.
#include "../tests/com/original_interfaces.h"

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

using kvtdruck::test::DruckManager;

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
    IDispatch* object;
    DISPID member;
    WORD flags;
    std::vector<VARIANT> arguments; ///< in Automation's order
};

/// What is to be written down: set while a print is recorded.
std::vector<Call>* recording = nullptr;
long records = 0;

/// An object that has every member: a truth for what reads and connects, a text for names, a number for all else.
/// After `records` steps it is at its end.
class Server final : public IDispatch {
  public:
    virtual ~Server() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    // Servers live as long as the program: the loop calls the very objects that the component called.
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
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
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO*, UINT*) override {
        if (recording != nullptr)
            note(member, flags, *parameters);
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

    void note(DISPID member, WORD flags, const DISPPARAMS& parameters) {
        Call call{this, member, flags, std::vector<VARIANT>(parameters.cArgs)};
        for (UINT i = 0; i < parameters.cArgs; ++i)
            expect(VariantCopyInd(&call.arguments[i], &parameters.rgvarg[i]), "an argument cannot be copied");
        recording->push_back(std::move(call));
    }

    long position_ = 0;
};

class Factory final : public IClassFactory {
  public:
    virtual ~Factory() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IClassFactory);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        return (new Server)->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

/// From now on this process gets servers of its own under the name.
void serve(const wchar_t* progId) {
    static Factory factory;
    CLSID clsid{};
    expect(CLSIDFromProgID(progId, &clsid), "the test servers are not registered");
    DWORD cookie = 0;
    expect(CoRegisterClassObject(clsid, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
           "a class cannot be offered");
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

void print(DruckManager& manager) {
    static Server host;
    IDispatch* connection = &host;
    IDispatch* selection = &host;
    VARIANT_BOOL result = VARIANT_FALSE;
    short mode = 0;
    double company = 1;
    BSTR folder = SysAllocString(L"C:\\Bench");
    BSTR list = SysAllocString(L"Umsatz");
    VARIANT_BOOL chooser = VARIANT_FALSE;
    long window = 1;
    short product = 1;
    expect(manager.fkt_Init(&connection, &result), "fkt_Init");
    expect(manager.fkt_Drucken(&mode, &company, &selection, &folder, &list, &chooser, &window, &product, &result),
           "fkt_Drucken");
    SysFreeString(folder);
    SysFreeString(list);
    if (result != VARIANT_TRUE)
        fail("the print has failed");
}

constexpr const wchar_t* kServed[] = {L"ListLabel.ListLabel", L"KVTZUG.clsZugFirmaAllg", L"KVTZUG.clsZugUmsatz"};

/// Makes the calls as any caller must: with a window and objects to call, arguments of its own, and the results let
/// go.
void repeat(const std::vector<Call>& calls) {
    const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                        CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr, nullptr);
    for (const auto* const progId : kServed) {
        CLSID clsid{};
        IDispatch* object = nullptr;
        expect(CLSIDFromProgID(progId, &clsid), "a name is not registered");
        expect(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(&object)),
               "an object cannot be made");
        object->Release();
    }
    VARIANT arguments[10];
    DISPID put = DISPID_PROPERTYPUT;
    for (const auto& call : calls) {
        const auto count = call.arguments.size();
        for (std::size_t i = 0; i < count; ++i) {
            arguments[i] = call.arguments[i];
            if (V_VT(&arguments[i]) == VT_BSTR)
                V_BSTR(&arguments[i]) =
                    SysAllocStringLen(V_BSTR(&arguments[i]), SysStringLen(V_BSTR(&arguments[i])));
        }
        const bool puts = (call.flags & DISPATCH_PROPERTYPUT) != 0;
        DISPPARAMS parameters{arguments, puts ? &put : nullptr, static_cast<UINT>(count), puts ? 1U : 0U};
        VARIANT result;
        VariantInit(&result);
        EXCEPINFO exception{};
        UINT wrong = 0;
        call.object->Invoke(call.member, IID_NULL, LOCALE_USER_DEFAULT, call.flags, &parameters, &result,
                            &exception, &wrong);
        VariantClear(&result);
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

/// Best of many turns, taken in alternation, so that both see the same machine.
void compare(DruckManager& manager, long count) {
    records = count;
    std::vector<Call> calls;
    recording = &calls;
    print(manager);
    recording = nullptr;
    double dll = 1e30;
    double bare = 1e30;
    const int turns = static_cast<int>(std::max(15L, 3000 / count));
    for (int i = 0; i < turns; ++i) {
        dll = std::min(dll, microseconds([&] { print(manager); }));
        bare = std::min(bare, microseconds([&] { repeat(calls); }));
    }
    std::printf("%8ld %10zu %14.1f %14.1f %8.2f\n", count, calls.size(), dll, bare, dll / bare);
    for (auto& call : calls)
        for (auto& argument : call.arguments)
            VariantClear(&argument);
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc != 2)
        fail("com_print DLL");
    expect(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "COM cannot be used");
    for (const auto* const progId : kServed)
        serve(progId);
    DruckManager* const manager = createManager(argv[1]);
    std::printf(" records      calls   DLL, microsec  loop, microsec   ratio\n");
    for (const long count : {1L, 100L, 10'000L})
        compare(*manager, count);
    return 0;
}
