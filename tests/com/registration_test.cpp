// Registering and unregistering, in hives of the test's own: another program's view of the registry stays as it is.
#include "hive.h"
#include "host.h"

#include <sddl.h>

#include <filesystem>

namespace kvtdruck::test {
namespace {

using testing::Contains;
using testing::IsEmpty;

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
    HRESULT call(const char* operation, const std::filesystem::path& path = dllPath()) const {
        return callEntryPoint(path, operation, machine_, user_);
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
