// The registry's classes, as a change that is made whole or not at all.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kvtdruck::com {

/// The classes of the machine (HKEY_LOCAL_MACHINE) or of the user (HKEY_CURRENT_USER). Keys are named from here on,
/// by their whole path: by it the system tells which of them 32-bit and 64-bit programs share.
class ClassRoot {
  public:
    explicit ClassRoot(HKEY hive) : hive_(hive) {}

    HKEY hive() const { return hive_; }
    static std::wstring pathOf(const std::wstring& key) { return L"Software\\Classes\\" + key; }

    /// Whether the caller may write here.
    bool writable() const;
    /// `view` is KEY_WOW64_32KEY or KEY_WOW64_64KEY for that of another architecture, or 0.
    bool has(const std::wstring& key, REGSAM view = 0) const;
    /// The text of a value, by default the key's own.
    std::optional<std::wstring> text(const std::wstring& key, const wchar_t* name = nullptr) const;
    std::vector<std::wstring> subkeys(const std::wstring& key) const;
    /// Removes the key and all below; one that is not there is removed.
    LSTATUS remove(const std::wstring& key) const;

  private:
    HKEY hive_;
};

/// Text values written below a class root. After the first failure nothing more is written, and what there was
/// before the change is there again at its end.
class RegistryChange {
  public:
    explicit RegistryChange(ClassRoot root) : root_(root) {}
    RegistryChange(const RegistryChange&) = delete;
    RegistryChange& operator=(const RegistryChange&) = delete;
    ~RegistryChange();

    void set(const std::wstring& key, const wchar_t* name, const std::wstring& value);
    LSTATUS status() const { return status_; }

  private:
    void rememberKey(const std::wstring& path);
    void rememberValue(HKEY key, const std::wstring& path, const wchar_t* name);

    ClassRoot root_;
    LSTATUS status_ = ERROR_SUCCESS;
    std::vector<std::function<void()>> undo_;
};

} // namespace kvtdruck::com
