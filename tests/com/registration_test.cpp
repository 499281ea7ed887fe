// Registering and unregistering, in hives of the test's own: another program's view of the registry stays as it is.
#include "host.h"

#include <sddl.h>

#include <filesystem>

namespace kvtdruck::test {
namespace {

using testing::Contains;
using testing::IsEmpty;

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

/// The DLL once more, in another folder.
class Copy {
  public:
    Copy() {
        std::filesystem::create_directories(folder_);
        std::filesystem::copy_file(dllPath(), path(), std::filesystem::copy_options::overwrite_existing);
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;
    ~Copy() {
        std::error_code error;
        std::filesystem::remove_all(folder_, error);
    }

    std::filesystem::path path() const { return folder_ / "KDVTDruck.dll"; }

  private:
    std::filesystem::path folder_ = std::filesystem::temp_directory_path() / "KVTDruckKopie";
};

class Registration : public testing::Test {
  protected:
    /// Calls an entry point of the DLL at `path` with the test's hives in the place of the system's.
    HRESULT call(const char* operation, const std::filesystem::path& path = dllPath()) const {
        auto* const dll = LoadLibraryW(path.c_str());
        auto* const function =
            reinterpret_cast<HRESULT WINAPI (*)()>(reinterpret_cast<void*>(GetProcAddress(dll, operation)));
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine_.get()), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, user_.get()), ERROR_SUCCESS);
        const auto result = function();
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, nullptr), ERROR_SUCCESS);
        FreeLibrary(dll);
        return result;
    }

    /// A key of the machine's classes that goes with the next start of Windows: it can't get a lasting one below
    /// it.
    void createVolatile(const wchar_t* name) const {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(machine_.classes(), name, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                  nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    /// From here on nobody may change the machine's classes.
    void protectMachine() const {
        PSECURITY_DESCRIPTOR readOnly = nullptr;
        ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;CI;KR;;;WD)", SDDL_REVISION_1,
                                                                         &readOnly, nullptr));
        EXPECT_EQ(RegSetKeySecurity(machine_.classes(), DACL_SECURITY_INFORMATION, readOnly), ERROR_SUCCESS);
        LocalFree(readOnly);
    }

    /// Nothing but the keys that every Windows has.
    static auto hasContainersAlone() {
        return testing::Each(testing::AnyOf(L"\\CLSID", L"\\Interface", L"\\TypeLib"));
    }

    static constexpr const wchar_t* kLastClass = L"KVTDruck.clsDruck_UmsatzHW";

    const Hive machine_{L"Machine"};
    const Hive user_{L"User"};
};

TEST_F(Registration, WritesAllClassesAndLeavesNothing) {
    ASSERT_EQ(call("DllRegisterServer"), S_OK);
    const auto written = machine_.content();
    for (const auto& known : kComponentClasses)
        EXPECT_THAT(written, Contains(std::wstring(L"\\KVTDruck.") + known.name));
    EXPECT_THAT(user_.content(), IsEmpty());
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    EXPECT_THAT(machine_.content(), hasContainersAlone());
}

TEST_F(Registration, TwiceIsAsOnce) {
    ASSERT_EQ(call("DllRegisterServer"), S_OK);
    const auto written = machine_.content();
    EXPECT_EQ(call("DllRegisterServer"), S_OK);
    EXPECT_EQ(machine_.content(), written);
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(call("DllUnregisterServer"), S_OK) << "what is gone already is what was asked for";
}

TEST_F(Registration, AFailureHalfwayLeavesNothing) {
    createVolatile(kLastClass);
    const auto before = machine_.content();
    EXPECT_EQ(call("DllRegisterServer"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    EXPECT_EQ(machine_.content(), before);
}

TEST_F(Registration, AFailureHalfwayLeavesWhatAnotherCopyHasRegistered) {
    const Copy copy;
    ASSERT_EQ(call("DllRegisterServer", copy.path()), S_OK);
    RegDeleteTreeW(machine_.classes(), kLastClass);
    createVolatile(kLastClass);
    const auto before = machine_.content();
    EXPECT_EQ(call("DllRegisterServer"), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    EXPECT_EQ(machine_.content(), before);
}

TEST_F(Registration, UnregisteringLeavesWhatLeadsToAnotherCopy) {
    const Copy copy;
    ASSERT_EQ(call("DllRegisterServer", copy.path()), S_OK);
    const auto before = machine_.content();
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(machine_.content(), before);
    EXPECT_EQ(call("DllUnregisterServer", copy.path()), S_OK);
    EXPECT_THAT(machine_.content(), hasContainersAlone());
}

TEST_F(Registration, WithoutRightsOnTheMachineItIsTheUsersAlone) {
    protectMachine();
    ASSERT_EQ(call("DllRegisterServer"), S_OK);
    EXPECT_THAT(machine_.content(), IsEmpty());
    EXPECT_THAT(user_.content(), Contains(std::wstring(L"\\") + kLastClass));
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    EXPECT_THAT(user_.content(), hasContainersAlone());
}

} // namespace
} // namespace kvtdruck::test
