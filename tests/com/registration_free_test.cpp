// The component used without registration: this program's manifest (registration_free_test.manifest.in) names the
// component's assembly, whose manifest and DLL lie beside it.
#include "original_interfaces.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

namespace kvtdruck::test {
namespace {

std::filesystem::path pathOf(HMODULE module) {
    wchar_t path[2048];
    const auto length = GetModuleFileNameW(module, path, static_cast<DWORD>(std::size(path)));
    return std::wstring(path, length);
}

class RegistrationFree : public testing::TestWithParam<ClassIdentifiers> {
  protected:
    RegistrationFree() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~RegistrationFree() override { CoUninitialize(); }

    /// The class has the tested interface and comes from this program's folder.
    static void expectCreated(REFCLSID clsid) {
        IUnknown* object = nullptr;
        ASSERT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, GetParam().iid,
                                   reinterpret_cast<void**>(&object)),
                  S_OK);
        EXPECT_EQ(pathOf(GetModuleHandleW(L"KDVTDruck.dll")).parent_path(), pathOf(nullptr).parent_path());
        object->Release();
    }
};

TEST_P(RegistrationFree, ClassIsCreatedFromTheDllBesideTheProgram) {
    expectCreated(GetParam().clsid);
}

// The system may give a manifest's class another identifier of its own here, so what counts is what it creates.
TEST_P(RegistrationFree, NameLeadsToTheClass) {
    CLSID found{};
    ASSERT_EQ(CLSIDFromProgID((std::wstring(L"KVTDruck.") + GetParam().name).c_str(), &found), S_OK);
    expectCreated(found);
}

// The manifest tells COM how to carry calls of the interface to the object's thread.
TEST_P(RegistrationFree, InterfaceIsMarshalledBetweenApartments) {
    IUnknown* object = nullptr;
    ASSERT_EQ(CoCreateInstance(GetParam().clsid, nullptr, CLSCTX_INPROC_SERVER, GetParam().iid,
                               reinterpret_cast<void**>(&object)),
              S_OK);
    IStream* stream = nullptr;
    EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(GetParam().iid, object, &stream), S_OK);
    HRESULT unmarshalled = E_FAIL;
    std::atomic<bool> done = false;
    std::thread other([&] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        IUnknown* proxy = nullptr;
        if (stream != nullptr)
            unmarshalled = CoGetInterfaceAndReleaseStream(stream, GetParam().iid, reinterpret_cast<void**>(&proxy));
        if (proxy != nullptr)
            proxy->Release();
        CoUninitialize();
        done = true;
    });
    MSG message;
    while (!done)
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0)
            DispatchMessageW(&message);
        else
            Sleep(1);
    other.join();
    EXPECT_EQ(unmarshalled, S_OK);
    object->Release();
}

INSTANTIATE_TEST_SUITE_P(AllClasses, RegistrationFree, testing::ValuesIn(kComponentClasses),
                         [](const auto& tested) {
                             const std::wstring name = tested.param.name;
                             return std::string(name.begin(), name.end());
                         });

} // namespace
} // namespace kvtdruck::test
