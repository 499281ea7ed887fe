// Registering and unregistering, in a class root of the test's own: another program's view of the registry stays as
// it is.
#include "host.h"

namespace kvtdruck::test {
namespace {

using testing::IsEmpty;

/// An empty class root with the containers that every Windows has. It takes the place of the system's for this
/// process.
class Registration : public testing::Test {
  protected:
    Registration() {
        RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
        EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kPlace, &root_), ERROR_SUCCESS);
        for (const auto* const container : kContainers)
            create(container, REG_OPTION_NON_VOLATILE);
    }
    ~Registration() override {
        RegCloseKey(root_);
        RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
    }

    void create(const wchar_t* name, DWORD options) const {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(root_, name, 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    /// The keys below the root and its containers.
    std::vector<std::wstring> keys() const {
        auto all = subkeys(L"");
        for (const auto* const container : kContainers) {
            std::erase(all, container);
            for (const auto& key : subkeys(container))
                all.push_back(std::wstring(container) + L"\\" + key);
        }
        return all;
    }

    HRESULT call(const char* operation) const {
        auto* const function =
            reinterpret_cast<HRESULT WINAPI (*)()>(reinterpret_cast<void*>(GetProcAddress(dll_, operation)));
        HKEY classes = nullptr;
        EXPECT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, kPlace, &classes), ERROR_SUCCESS);
        EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, classes), ERROR_SUCCESS);
        const auto result = function();
        EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr), ERROR_SUCCESS);
        RegCloseKey(classes);
        return result;
    }

    static constexpr const wchar_t* kLastClass = L"KVTDruck.clsDruck_UmsatzHW";

  private:
    std::vector<std::wstring> subkeys(const std::wstring& name) const {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExW(root_, name.c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
        std::vector<std::wstring> found;
        wchar_t subkey[256];
        for (DWORD i = 0; RegEnumKeyW(key, i, subkey, 256) == ERROR_SUCCESS; ++i)
            found.emplace_back(subkey);
        RegCloseKey(key);
        return found;
    }

    static constexpr const wchar_t* kPlace = L"Software\\KVTDruckTest";
    static constexpr const wchar_t* kContainers[] = {L"CLSID", L"Interface", L"TypeLib"};

    HKEY root_ = nullptr;
    HMODULE dll_ = LoadLibraryW(dllPath().c_str());
};

TEST_F(Registration, WritesAllClassesAndLeavesNothing) {
    ASSERT_EQ(call("DllRegisterServer"), S_OK);
    const auto written = keys();
    for (const auto& known : kComponentClasses)
        EXPECT_THAT(written, testing::Contains(std::wstring(L"KVTDruck.") + known.name));
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    EXPECT_THAT(keys(), IsEmpty());
}

TEST_F(Registration, TwiceIsAsOnce) {
    ASSERT_EQ(call("DllRegisterServer"), S_OK);
    const auto written = keys();
    EXPECT_EQ(call("DllRegisterServer"), S_OK);
    EXPECT_EQ(keys(), written);
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    EXPECT_EQ(call("DllUnregisterServer"), S_OK) << "what is gone already is what was asked for";
}

TEST_F(Registration, FailingHalfwayTakesBackWhatWasWritten) {
    // A key that goes with the next start of Windows can't get a lasting one below it.
    create(kLastClass, REG_OPTION_VOLATILE);
    const auto result = call("DllRegisterServer");
    EXPECT_EQ(result, HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    EXPECT_THAT(keys(), IsEmpty());
}

} // namespace
} // namespace kvtdruck::test
