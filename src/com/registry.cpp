#include "com/registry.h"

namespace kvtdruck::com {
namespace {

/// An open key, closed at the end; null where it could not be opened.
class Key {
  public:
    Key(HKEY hive, const std::wstring& path, REGSAM access) {
        status_ = RegOpenKeyExW(hive, path.c_str(), 0, access, &handle_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        if (handle_)
            RegCloseKey(handle_);
    }

    HKEY get() const { return handle_; }
    LSTATUS status() const { return status_; }

  private:
    HKEY handle_ = nullptr;
    LSTATUS status_;
};

const BYTE* bytesOf(const std::wstring& text) {
    return reinterpret_cast<const BYTE*>(text.c_str());
}

DWORD sizeOf(const std::wstring& text) {
    return static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
}

} // namespace

bool ClassRoot::writable() const {
    return Key(hive_, L"Software\\Classes", KEY_READ | KEY_WRITE).status() != ERROR_ACCESS_DENIED;
}

bool ClassRoot::has(const std::wstring& key, REGSAM view) const {
    return Key(hive_, pathOf(key), KEY_READ | view).get() != nullptr;
}

std::optional<std::wstring> ClassRoot::text(const std::wstring& key, const wchar_t* name) const {
    const auto path = pathOf(key);
    DWORD size = 0;
    if (RegGetValueW(hive_, path.c_str(), name, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS)
        return std::nullopt;
    std::wstring value(size / sizeof(wchar_t), L'\0');
    if (RegGetValueW(hive_, path.c_str(), name, RRF_RT_REG_SZ, nullptr, value.data(), &size) != ERROR_SUCCESS)
        return std::nullopt;
    value.resize(value.find(L'\0'));
    return value;
}

std::vector<std::wstring> ClassRoot::subkeys(const std::wstring& key) const {
    const Key opened(hive_, pathOf(key), KEY_READ);
    std::vector<std::wstring> found;
    wchar_t name[256];
    for (DWORD i = 0; opened.get() && RegEnumKeyW(opened.get(), i, name, 256) == ERROR_SUCCESS; ++i)
        found.emplace_back(name);
    return found;
}

LSTATUS ClassRoot::remove(const std::wstring& key) const {
    const auto status = RegDeleteTreeW(hive_, pathOf(key).c_str());
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

RegistryChange::~RegistryChange() {
    if (status_ != ERROR_SUCCESS)
        for (auto step = undo_.rbegin(); step != undo_.rend(); ++step)
            (*step)();
}

void RegistryChange::set(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    if (status_ != ERROR_SUCCESS)
        return;
    const auto path = ClassRoot::pathOf(key);
    rememberKey(path);
    HKEY handle = nullptr;
    status_ =
        RegCreateKeyExW(root_.hive(), path.c_str(), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &handle, nullptr);
    if (status_ != ERROR_SUCCESS)
        return;
    rememberValue(handle, path, name);
    status_ = RegSetValueExW(handle, name, 0, REG_SZ, bytesOf(value), sizeOf(value));
    RegCloseKey(handle);
}

/// Where the key is missing, the first missing one on the way to it goes again.
void RegistryChange::rememberKey(const std::wstring& path) {
    for (auto end = path.find(L'\\');; end = path.find(L'\\', end + 1)) {
        const auto part = path.substr(0, end);
        if (Key(root_.hive(), part, KEY_READ).status() == ERROR_FILE_NOT_FOUND) {
            undo_.emplace_back([hive = root_.hive(), part] { RegDeleteTreeW(hive, part.c_str()); });
            return;
        }
        if (end == std::wstring::npos)
            return;
    }
}

void RegistryChange::rememberValue(HKEY key, const std::wstring& path, const wchar_t* name) {
    DWORD type = 0;
    DWORD size = 0;
    std::vector<BYTE> before;
    const bool there = RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) == ERROR_SUCCESS;
    before.resize(size);
    if (there)
        RegQueryValueExW(key, name, nullptr, &type, before.data(), &size);
    undo_.emplace_back([hive = root_.hive(), path, name, there, type, before] {
        const Key opened(hive, path, KEY_WRITE);
        if (opened.get() && there)
            RegSetValueExW(opened.get(), name, 0, type, before.data(), static_cast<DWORD>(before.size()));
        else if (opened.get())
            RegDeleteValueW(opened.get(), name);
    });
}

} // namespace kvtdruck::com
