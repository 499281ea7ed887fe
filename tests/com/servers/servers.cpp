// The libraries that the component talks to on a host's machine, for tests: the data access over ODBC, the engine's
// control, the parameter array, the error report, and a connection for scripts. One in-process server registers
// them all.
#include "com/counted.h"
#include "kvtzug/kvtzug.h"
#include "servers/control.h"
#include "servers/dispatch.h"
#include "servers/error_report.h"
#include "servers/parameter_array.h"
#include "values/characters.h"
#include "values/runtime_error.h"

#include <windows.h>

#include <olectl.h>

#include <functional>
#include <string>

namespace kvtdruck::test {
namespace {

HINSTANCE library = nullptr;

/// The data access with all its classes. Its open connections are shared, so one lasts as long as the library.
ReferenceKvtzug& dataAccess() {
    static ReferenceKvtzug kvtzug;
    return kvtzug;
}

struct ServedClass {
    const wchar_t* progId;
    const wchar_t* clsid;
    IUnknown* (*create)();
};

template <int index>
IUnknown* createReader();

constexpr StringView kReaders[] = {u"clsZugFirmaAllg",         u"clsZugUmsatz",      u"clsZugFirmaJahr",
                                   u"clsZugFeiertage",         u"clsZugMitarbeiter", u"clsZugKonten",
                                   u"clsZugMitarbeiterMonate", u"clsZugKosten",      u"clsZugMaterial"};

template <int index>
IUnknown* createReader() {
    return exposed(dataAccess().create(kReaders[index]));
}

/// What scripts use for a connection: an object with the one property that is asked for.
class ScriptConnection final : public Object {
  public:
    MemberId idOf(StringView name) override {
        if (!sameWord(name, u"ConnectionString"))
            throw RuntimeError(ErrorNumber::MemberNotFound);
        return 1;
    }
    Variant call(MemberId, std::span<const Variant>) override { return connectionString_; }
    void put(MemberId, std::span<const Variant>, const Variant& value) override { connectionString_ = value; }

  private:
    Variant connectionString_ = u"";
};

IUnknown* createConnection() {
    return exposed(std::make_shared<ScriptConnection>());
}

constexpr ServedClass kClasses[] = {
    {L"KVTZUG.clsZugFirmaAllg", L"{84879AB3-F326-40A4-8538-E22DDDF3FC3D}", createReader<0>},
    {L"KVTZUG.clsZugUmsatz", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D101}", createReader<1>},
    {L"KVTZUG.clsZugFirmaJahr", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D102}", createReader<2>},
    {L"KVTZUG.clsZugFeiertage", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D103}", createReader<3>},
    {L"KVTZUG.clsZugMitarbeiter", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D104}", createReader<4>},
    {L"KVTZUG.clsZugKonten", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D105}", createReader<5>},
    {L"KVTZUG.clsZugMitarbeiterMonate", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D106}", createReader<6>},
    {L"KVTZUG.clsZugKosten", L"{46320A65-1819-47D5-A7F9-CB7D88D45A0F}", createReader<7>},
    {L"KVTZUG.clsZugMaterial", L"{8AE3343B-5336-4A1D-9DA0-4698CF6A3DC3}", createReader<8>},
    {L"ListLabel.ListLabel", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D110}", createControl},
    {L"XArrayDBObject.XArrayDB", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D111}",
     [] { return static_cast<IUnknown*>(exposed(createParameterArray())); }},
    {L"KVTTest.clsFehler", L"{D26DE823-97C9-11D1-8B58-00A0C94CBEB3}",
     [] { return static_cast<IUnknown*>(createErrorReport()); }},
    {L"KVTTest.Connection", L"{6B1F8A52-0C8E-4F0B-9C5C-5F3E52B0D112}", createConnection},
};

class Factory final : public com::Counted<IClassFactory> {
  public:
    explicit Factory(const ServedClass& served) : served_(served) { ++liveObjects; }
    ~Factory() override { --liveObjects; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        *object = nullptr;
        if (outer != nullptr)
            return CLASS_E_NOAGGREGATION;
        IUnknown* const created = served_.create();
        const auto result = created->QueryInterface(iid, object);
        created->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        liveObjects += lock != 0 ? 1 : -1;
        return S_OK;
    }

  private:
    const ServedClass& served_;
};

std::wstring keyOf(const ServedClass& served) {
    return std::wstring(L"Software\\Classes\\CLSID\\") + served.clsid;
}

bool setDefault(const std::wstring& key, const std::wstring& value) {
    return RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, value.c_str(),
                           static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

bool registerClass(const ServedClass& served, const std::wstring& path) {
    const auto server = keyOf(served) + L"\\InprocServer32";
    constexpr wchar_t kModel[] = L"Apartment";
    return setDefault(keyOf(served), served.progId) && setDefault(server, path) &&
           RegSetKeyValueW(HKEY_LOCAL_MACHINE, server.c_str(), L"ThreadingModel", REG_SZ, kModel, sizeof kModel) ==
               ERROR_SUCCESS &&
           setDefault(std::wstring(L"Software\\Classes\\") + served.progId + L"\\CLSID", served.clsid);
}

} // namespace
} // namespace kvtdruck::test

using namespace kvtdruck::test;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD, void*) {
    library = instance;
    return TRUE;
}

HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    *object = nullptr;
    for (const auto& served : kClasses) {
        CLSID own;
        if (FAILED(CLSIDFromString(served.clsid, &own)) || !IsEqualCLSID(own, clsid))
            continue;
        IClassFactory* const factory =
            served.create == createControl ? createControlFactory() : new Factory(served);
        const auto result = factory->QueryInterface(iid, object);
        factory->Release();
        return result;
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT WINAPI DllCanUnloadNow() {
    return liveObjects == 0 ? S_OK : S_FALSE;
}

/// For leak tests: how many objects of this library live.
long LiveObjects() {
    return liveObjects;
}

HRESULT WINAPI DllRegisterServer() {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(library, path, MAX_PATH);
    for (const auto& served : kClasses)
        if (!registerClass(served, path))
            return SELFREG_E_CLASS;
    return S_OK;
}

HRESULT WINAPI DllUnregisterServer() {
    for (const auto& served : kClasses) {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, keyOf(served).c_str());
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, (std::wstring(L"Software\\Classes\\") + served.progId).c_str());
    }
    return S_OK;
}
}
