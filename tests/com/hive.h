// Hives of a test's own, in which the component registers: another program's view of the registry stays as it is.
#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kvtdruck::test {

/// Stands for the machine's or the user's hive, with nothing below its classes.
class Hive {
  public:
    explicit Hive(const std::wstring& name) : path_(std::wstring(kPlace) + name) {
        RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, (path_ + L"\\Software\\Classes").c_str(), &classes_),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, path_.c_str(), &hive_), ERROR_SUCCESS);
    }
    Hive(const Hive&) = delete;
    Hive& operator=(const Hive&) = delete;
    ~Hive() {
        RegCloseKey(classes_);
        RegCloseKey(hive_);
        RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    }

    HKEY get() const { return hive_; }
    HKEY classes() const { return classes_; }

    /// Every key and value, one text each.
    std::vector<std::wstring> content() const {
        std::vector<std::wstring> all;
        append(all, classes_, L"");
        return all;
    }

  private:
    static void append(std::vector<std::wstring>& all, HKEY key, const std::wstring& path) {
        wchar_t name[256];
        for (DWORD i = 0;; ++i) {
            wchar_t value[1024]{};
            DWORD length = 256;
            DWORD size = sizeof(value) - sizeof(wchar_t);
            if (RegEnumValueW(key, i, name, &length, nullptr, nullptr, reinterpret_cast<BYTE*>(value), &size) !=
                ERROR_SUCCESS)
                break;
            all.push_back(path + L" " + name + L"=" + value);
        }
        for (DWORD i = 0; RegEnumKeyW(key, i, name, 256) == ERROR_SUCCESS; ++i) {
            HKEY child = nullptr;
            const auto place = path + L"\\" + name;
            all.push_back(place);
            EXPECT_EQ(RegOpenKeyExW(key, name, 0, KEY_READ, &child), ERROR_SUCCESS);
            append(all, child, place);
            RegCloseKey(child);
        }
    }

    static constexpr const wchar_t* kPlace = L"Software\\KVTDruckTest\\";

    std::wstring path_;
    HKEY hive_ = nullptr;
    HKEY classes_ = nullptr;
};

/// Calls an entry point of the DLL at `path` with these hives in the place of the system's. They take it for the
/// whole process.
inline HRESULT callEntryPoint(const std::filesystem::path& path, const char* operation, const Hive& machine,
                              const Hive& user) {
    auto* const dll = LoadLibraryW(path.c_str());
    auto* const function =
        reinterpret_cast<HRESULT WINAPI (*)()>(reinterpret_cast<void*>(GetProcAddress(dll, operation)));
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine.get()), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, user.get()), ERROR_SUCCESS);
    const auto result = function();
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr), ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, nullptr), ERROR_SUCCESS);
    FreeLibrary(dll);
    return result;
}

} // namespace kvtdruck::test
