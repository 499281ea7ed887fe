#include "com/registration.h"

#include "com/classes.h"
#include "com/com_error.h"
#include "com/registry.h"
#include "com/server.h"

#include <objbase.h>
#include <oleauto.h>

#include <cwchar>
#include <string>
#include <vector>

namespace kvtdruck::com {
namespace {

#ifdef _WIN64
constexpr const wchar_t* kSystem = L"win64";
constexpr REGSAM kOtherView = KEY_WOW64_32KEY;
#else
constexpr const wchar_t* kSystem = L"win32";
constexpr REGSAM kOtherView = KEY_WOW64_64KEY;
#endif

/// What lets interfaces of a type library cross apartments: oleaut32's own marshaller.
constexpr const wchar_t* kTypeLibraryMarshaller = L"{00020424-0000-0000-C000-000000000046}";

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

/// Names and numbers of a type library or of one of its types.
std::wstring documentation(ITypeLib& library, INT index, bool help) {
    BSTR text = nullptr;
    library.GetDocumentation(index, help ? nullptr : &text, help ? &text : nullptr, nullptr, nullptr);
    std::wstring copy(text, SysStringLen(text));
    SysFreeString(text);
    return copy;
}

/// The type library inside the DLL, as the registry names it.
class Library {
  public:
    Library() {
        TLIBATTR* attributes = nullptr;
        check(library_->GetLibAttr(&attributes));
        attributes_ = *attributes;
        library_->ReleaseTLibAttr(attributes);
        version_ = std::to_wstring(attributes_.wMajorVerNum) + L"." + std::to_wstring(attributes_.wMinorVerNum);
    }

    std::wstring id() const { return textOf(attributes_.guid); }
    const std::wstring& version() const { return version_; }
    std::wstring flags() const { return std::to_wstring(attributes_.wLibFlags & ~LIBFLAG_FHASDISKIMAGE); }
    std::wstring help() const { return documentation(*library_.get(), -1, true); }
    std::wstring key() const { return L"TypeLib\\" + id(); }
    std::wstring versionKey() const { return key() + L"\\" + version_; }
    /// Where the library's place stands: under its own locale, and under the neutral one, where the marshaller of
    /// some systems looks alone.
    std::vector<std::wstring> localeKeys() const {
        wchar_t locale[9];
        swprintf(locale, 9, L"%lx", static_cast<unsigned long>(attributes_.lcid));
        return {versionKey() + L"\\" + locale, versionKey() + L"\\0"};
    }

    /// Calls `visit` with key and name of each interface.
    template <class Visit>
    void forEachInterface(Visit&& visit) const {
        for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
            TYPEKIND kind = TKIND_MAX;
            ComPtr<ITypeInfo> type;
            TYPEATTR* attributes = nullptr;
            check(library_->GetTypeInfoType(i, &kind));
            if (kind != TKIND_DISPATCH)
                continue;
            check(library_->GetTypeInfo(i, type.put()));
            check(type->GetTypeAttr(&attributes));
            const auto key = L"Interface\\" + textOf(attributes->guid);
            type->ReleaseTypeAttr(attributes);
            visit(key, documentation(*library_.get(), static_cast<INT>(i), false));
        }
    }

  private:
    ComPtr<ITypeLib> library_ = ownTypeLibrary();
    TLIBATTR attributes_{};
    std::wstring version_;
};

// Registering
// -------------------------------------------------------------------------------------------------------------------

void writeClass(RegistryChange& change, const CoClass& coClass, const Library& library) {
    const auto key = classKey(coClass);
    const auto name = progId(coClass);
    change.set(key, nullptr, name);
    change.set(key + L"\\InprocServer32", nullptr, ownPath());
    change.set(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    change.set(key + L"\\ProgID", nullptr, name);
    change.set(key + L"\\Programmable", nullptr, L"");
    change.set(key + L"\\TypeLib", nullptr, library.id());
    change.set(key + L"\\VERSION", nullptr, library.version());
    change.set(name, nullptr, name);
    change.set(name + L"\\Clsid", nullptr, textOf(coClass.id));
}

void writeLibrary(RegistryChange& change, const Library& library) {
    const auto path = ownPath();
    change.set(library.versionKey(), nullptr, library.help());
    change.set(library.versionKey() + L"\\FLAGS", nullptr, library.flags());
    change.set(library.versionKey() + L"\\HELPDIR", nullptr, path.substr(0, path.rfind(L'\\')));
    for (const auto& key : library.localeKeys())
        change.set(key + L"\\" + kSystem, nullptr, path);
    library.forEachInterface([&](const std::wstring& key, const std::wstring& name) {
        change.set(key, nullptr, name);
        change.set(key + L"\\ProxyStubClsid32", nullptr, kTypeLibraryMarshaller);
        change.set(key + L"\\TypeLib", nullptr, library.id());
        change.set(key + L"\\TypeLib", L"Version", library.version());
    });
}

// Unregistering
// -----------------------------------------------------------------------------------------------------------------

/// Removes what leads to this DLL from one class root, and goes on after a failure.
class Removal {
  public:
    explicit Removal(ClassRoot root) : root_(root) {}

    void removeClass(const CoClass& coClass) {
        const auto key = classKey(coClass);
        const auto name = progId(coClass);
        if (leadsHere(key + L"\\InprocServer32"))
            remove(key);
        // Both architectures share the name, so it stays while one of them has the class.
        if (root_.text(name + L"\\Clsid") == textOf(coClass.id) && !root_.has(key) && !root_.has(key, kOtherView))
            remove(name);
    }

    void removeLibrary(const Library& library) {
        bool removed = false;
        for (const auto& key : library.localeKeys()) {
            if (!leadsHere(key + L"\\" + kSystem))
                continue;
            remove(key + L"\\" + kSystem);
            removed = true;
            if (root_.subkeys(key).empty())
                remove(key);
        }
        if (!removed)
            return;
        library.forEachInterface([&](const std::wstring& key, const std::wstring&) {
            if (root_.text(key + L"\\TypeLib") == library.id())
                remove(key);
        });
        if (root_.subkeys(library.versionKey()) == std::vector<std::wstring>{L"FLAGS", L"HELPDIR"})
            remove(library.versionKey()); // no locale has a place any more
        if (root_.subkeys(library.key()).empty())
            remove(library.key());
    }

    LSTATUS status() const { return status_; }

  private:
    bool leadsHere(const std::wstring& key) const {
        const auto path = root_.text(key);
        const auto own = ownPath();
        return path && CompareStringOrdinal(path->c_str(), -1, own.c_str(), -1, TRUE) == CSTR_EQUAL;
    }

    void remove(const std::wstring& key) {
        if (const auto status = root_.remove(key); status != ERROR_SUCCESS)
            status_ = status;
    }

    ClassRoot root_;
    LSTATUS status_ = ERROR_SUCCESS;
};

HRESULT resultOf(LSTATUS status) {
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

} // namespace

HRESULT registerComponent() {
    const ClassRoot machine(HKEY_LOCAL_MACHINE);
    RegistryChange change(machine.writable() ? machine : ClassRoot(HKEY_CURRENT_USER));
    const Library library;
    for (const auto& coClass : allClasses())
        writeClass(change, coClass, library);
    writeLibrary(change, library);
    return resultOf(change.status());
}

HRESULT unregisterComponent() {
    const Library library;
    LSTATUS status = ERROR_SUCCESS;
    for (auto* const hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        Removal removal{ClassRoot(hive)};
        for (const auto& coClass : allClasses())
            removal.removeClass(coClass);
        removal.removeLibrary(library);
        if (removal.status() != ERROR_SUCCESS)
            status = removal.status();
    }
    return resultOf(status);
}

} // namespace kvtdruck::com
