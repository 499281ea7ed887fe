// What a test needs to be a host of the component: the DLL, a connection to the sample company, the parameter
// array, and the files in which the test servers tell what they were asked.
#pragma once

#include "original_interfaces.h"
#include "values/text.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <oleauto.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kvtdruck::test {

/// A counted reference to a COM object.
template <class Interface>
class Ref {
  public:
    Ref() = default;
    /// Takes over the reference that `object` is.
    explicit Ref(Interface* object) : object_(object) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_ != nullptr)
            object_->Release();
    }
    Interface* get() const { return object_; }
    Interface* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

  private:
    Interface* object_ = nullptr;
};

/// A COM string that a by-reference argument may change.
class Text {
  public:
    Text(const wchar_t* text) : text_(SysAllocString(text)) {}
    Text(const std::wstring& text) : Text(text.c_str()) {}
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    ~Text() { SysFreeString(text_); }
    BSTR* operator&() { return &text_; }
    BSTR get() const { return text_; }

  private:
    BSTR text_;
};

/// A VARIANT that is cleared at the end.
class Value : public VARIANT {
  public:
    Value() { VariantInit(this); }
    explicit Value(const wchar_t* text) : Value() {
        vt = VT_BSTR;
        bstrVal = SysAllocString(text);
    }
    explicit Value(long number) : Value() {
        vt = VT_I4;
        lVal = number;
    }
    explicit Value(double number) : Value() {
        vt = VT_R8;
        dblVal = number;
    }
    explicit Value(bool truth) : Value() {
        vt = VT_BOOL;
        boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
    }
    explicit Value(IDispatch* object) : Value() {
        vt = VT_DISPATCH;
        pdispVal = object;
        object->AddRef();
    }
    Value(Value&& other) noexcept : VARIANT(std::exchange(static_cast<VARIANT&>(other), VARIANT{})) {}
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { VariantClear(this); }
};

/// One late-bound call with the arguments in order; gives the HRESULT and the result.
HRESULT invoke(IDispatch* object, const wchar_t* name, WORD flags, std::vector<VARIANT> arguments,
               VARIANT* result = nullptr);

/// A new object of a class, by its identifier or by the name it is registered under.
template <class Interface>
Ref<Interface> create(const CLSID& clsid, const IID& iid) {
    void* object = nullptr;
    EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, &object), S_OK);
    return Ref(static_cast<Interface*>(object));
}
Ref<IDispatch> create(const wchar_t* progId);

/// The path of the DLL under test, and of the sample company's database.
std::wstring dllPath();
std::wstring databasePath();

/// The handles that this process holds open.
long openHandles();

/// Waits until something holds; false after ten seconds.
bool eventually(const std::function<bool()>& holds);

/// The value of an environment variable that the build has set; throws where it is missing.
std::wstring setting(const wchar_t* name);
/// The same as a number, or `otherwise` where it is not set.
long setting(const wchar_t* name, long otherwise);

/// Top-level windows of the calling thread.
long ownWindows();

/// A parameter array of the given size.
Ref<IDispatch> newArray(long rows, long columns);
void setCell(IDispatch* array, long row, long column, VARIANT value);
Value cell(IDispatch* array, long row, long column);

/// A test with an empty folder of its own, in which the test servers write.
class HostTest : public testing::Test {
  protected:
    HostTest();
    ~HostTest() override;

    /// The application folder that is passed to the component; it has a layout folder and a preview folder.
    std::wstring applicationFolder() const { return (folder_ / L"Anwendung").wstring(); }
    std::filesystem::path previewFolder() const { return folder_ / L"Anwendung\\DB\\BerichteLLVT\\Preview"; }
    const std::filesystem::path& folder() const { return folder_; }

    /// The lines of a test server's file, each without its line end.
    std::vector<std::string> engineCalls() const { return lines(L"record.txt"); }
    std::vector<std::string> reportedErrors() const;
    std::vector<std::string> hostingSteps() const { return lines(L"hosting.txt"); }
    std::vector<std::string> startedViewers() const { return lines(L"viewers.txt"); }
    void forget(const wchar_t* file) const { std::filesystem::remove(folder_ / file); }

    /// Lets the engine's control answer by this script from its next creation on.
    void answer(const std::string& script) const;
    /// Which kind of control the engine offers from now on.
    static void offerControl(const wchar_t* kind) { SetEnvironmentVariableW(L"KVT_TEST_CONTROL", kind); }

    /// A connection to the sample company.
    static Ref<IDispatch> connection();
    /// The selection of all years.
    static Ref<IDispatch> everything();

    static Ref<DruckManager> manager() { return create<DruckManager>(kManagerClass.clsid, kManagerClass.iid); }
    /// A manager with a connection to the sample company.
    static Ref<DruckManager> readyManager();

    /// Prints through the vtable; every call must succeed as a COM call.
    bool print(DruckManager& manager, const wchar_t* list, short mode = 0, double company = 1, long window = 100,
               IDispatch* parameters = nullptr, short product = 1);

  private:
    std::vector<std::string> lines(const wchar_t* file) const;

    std::filesystem::path folder_;
};

/// The lines in which `operation` was called.
std::vector<std::string> callsOf(const std::string& operation, const std::vector<std::string>& calls);

} // namespace kvtdruck::test
