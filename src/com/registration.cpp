#include "com/registration.h"

#include "com/classes.h"
#include "com/server.h"

#include <objbase.h>
#include <oleauto.h>

#include <string>

namespace kvtdruck::com {
namespace {

std::wstring textOf(REFGUID id) {
    wchar_t text[39];
    StringFromGUID2(id, text, 39);
    return text;
}

std::wstring classKey(const CoClass& coClass) {
    return L"CLSID\\" + textOf(coClass.id);
}

std::wstring progId(const CoClass& coClass) {
    return std::wstring(L"KVTDruck.") + coClass.name;
}

/// What the type library says of itself.
TLIBATTR libraryAttributes(ITypeLib& library) {
    TLIBATTR* attributes = nullptr;
    TLIBATTR copy{};
    if (SUCCEEDED(library.GetLibAttr(&attributes))) {
        copy = *attributes;
        library.ReleaseTLibAttr(attributes);
    }
    return copy;
}

std::wstring versionOf(const TLIBATTR& library) {
    return std::to_wstring(library.wMajorVerNum) + L"." + std::to_wstring(library.wMinorVerNum);
}

/// The library's key for no language in particular, where marshallers look that know the interface alone.
std::wstring neutralKey(const TLIBATTR& library) {
    return L"TypeLib\\" + textOf(library.guid) + L"\\" + versionOf(library) + L"\\0";
}

constexpr const wchar_t* kSystem = sizeof(void*) == 8 ? L"\\win64" : L"\\win32";

/// Writes string values below HKEY_CLASSES_ROOT; after the first failure nothing more.
class Writer {
  public:
    void set(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
        if (status_ != ERROR_SUCCESS)
            return;
        HKEY handle = nullptr;
        status_ =
            RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &handle, nullptr);
        if (status_ != ERROR_SUCCESS)
            return;
        status_ = RegSetValueExW(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                                 static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
        RegCloseKey(handle);
    }

    HRESULT result() const { return HRESULT_FROM_WIN32(static_cast<DWORD>(status_)); }

  private:
    LSTATUS status_ = ERROR_SUCCESS;
};

void writeClass(Writer& writer, const CoClass& coClass, const TLIBATTR& library) {
    const auto key = classKey(coClass);
    const auto name = progId(coClass);
    writer.set(key, nullptr, name);
    writer.set(key + L"\\InprocServer32", nullptr, ownPath());
    writer.set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    writer.set(key + L"\\ProgID", nullptr, name);
    writer.set(key + L"\\Programmable", nullptr, L"");
    writer.set(key + L"\\TypeLib", nullptr, textOf(library.guid));
    writer.set(key + L"\\VERSION", nullptr, versionOf(library));
    writer.set(name, nullptr, name);
    writer.set(name + L"\\Clsid", nullptr, textOf(coClass.id));
}

HRESULT writeAll() {
    const auto library = ownTypeLibrary();
    const auto attributes = libraryAttributes(*library.get());
    Writer writer;
    for (const auto& coClass : allClasses())
        writeClass(writer, coClass, attributes);
    writer.set(neutralKey(attributes) + kSystem, nullptr, ownPath());
    if (FAILED(writer.result()))
        return writer.result();
    return RegisterTypeLib(library.get(), ownPath().data(), nullptr);
}

HRESULT removeKey(const std::wstring& key) {
    const auto status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND
               ? S_OK
               : HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

HRESULT removeTypeLibrary() {
    const auto attributes = libraryAttributes(*ownTypeLibrary().get());
    const auto neutral = neutralKey(attributes);
    if (const auto removed = removeKey(neutral + kSystem); FAILED(removed))
        return removed;
    RegDeleteKeyW(HKEY_CLASSES_ROOT, neutral.c_str()); // stays where it holds the other architecture's library
    BSTR path = nullptr;
    if (FAILED(QueryPathOfRegTypeLib(attributes.guid, attributes.wMajorVerNum, attributes.wMinorVerNum,
                                     attributes.lcid, &path)))
        return S_OK; // not registered (any more): that is what was asked for
    SysFreeString(path);
    return UnRegisterTypeLib(attributes.guid, attributes.wMajorVerNum, attributes.wMinorVerNum, attributes.lcid,
                             attributes.syskind);
}

} // namespace

HRESULT registerComponent() {
    const auto result = writeAll();
    if (FAILED(result))
        unregisterComponent();
    return result;
}

HRESULT unregisterComponent() {
    HRESULT result = removeTypeLibrary();
    for (const auto& coClass : allClasses())
        for (const auto& key : {classKey(coClass), progId(coClass)})
            if (const auto removed = removeKey(key); FAILED(removed))
                result = removed;
    return result;
}

} // namespace kvtdruck::com
