#include "com/engine_host.h"

#include "com/com_error.h"
#include "com/control_site.h"
#include "com/foreign_object.h"
#include "com/server.h"
#include "com/threads.h"
#include "com/variants.h"

#include <ocidl.h>
#include <olectl.h>

#include <optional>

namespace kvtdruck::com {
namespace {

constexpr wchar_t kWindowClass[] = L"KVTDruck.frmDruck";

} // namespace

/// The class of the hidden windows, which all threads share. It lives as long as any thread may need it, so that
/// the DLL can be unloaded.
class WindowClass {
  public:
    WindowClass() {
        const Locked locked(lock_);
        if (users_++ != 0)
            return;
        WNDCLASSW description{};
        description.lpfnWndProc = DefWindowProcW;
        description.hInstance = ownModule();
        description.lpszClassName = kWindowClass;
        RegisterClassW(&description);
    }
    WindowClass(const WindowClass&) = delete;
    WindowClass& operator=(const WindowClass&) = delete;
    ~WindowClass() {
        const Locked locked(lock_);
        if (--users_ == 0)
            UnregisterClassW(kWindowClass, ownModule());
    }

  private:
    static inline SRWLOCK lock_ = SRWLOCK_INIT;
    static inline int users_ = 0;
};

namespace {

constexpr StringView kControl = u"ListLabel.ListLabel";
/// No operation takes more.
constexpr std::size_t kMostArguments = 10;

class HiddenWindow {
  public:
    HiddenWindow() {
        window_ = CreateWindowExW(0, kWindowClass, L"frmDruck", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                  CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, ownModule(), nullptr);
        if (!window_)
            throw runtimeErrorOf(HRESULT_FROM_WIN32(GetLastError()));
    }
    HiddenWindow(const HiddenWindow&) = delete;
    HiddenWindow& operator=(const HiddenWindow&) = delete;
    ~HiddenWindow() { DestroyWindow(window_); }

    HWND get() const { return window_; }

  private:
    HWND window_ = nullptr;
};

/// A control of a licensed kind is made against the key that its factory gives on a machine that may use it.
ComPtr<IUnknown> createControl() {
    ComPtr<IClassFactory> factory;
    check(CoGetClassObject(classIdOf(kControl), CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, nullptr,
                           IID_IClassFactory, reinterpret_cast<void**>(factory.put())));
    ComPtr<IUnknown> control;
    const auto target = reinterpret_cast<void**>(control.put());
    BSTR key = nullptr;
    const auto licensed = factory.as<IClassFactory2>();
    const bool hasKey = licensed && SUCCEEDED(licensed->RequestLicKey(0, &key));
    const Bstr owner(key);
    check(hasKey ? licensed->CreateInstanceLic(nullptr, nullptr, IID_IUnknown, key, target)
                 : factory->CreateInstance(nullptr, IID_IUnknown, target));
    if (!control.as<IDispatch>())
        throw RuntimeError(ErrorNumber::CannotCreateObject);
    return control;
}

class ComControl final : public Control {
  public:
    ComControl(ComPtr<IDispatch> control, Platform& platform) : control_(std::move(control)), platform_(platform) {}

    std::int32_t call(Operation operation, std::span<const Argument> arguments) override {
        const auto count = arguments.size();
        if (count > kMostArguments)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        LentTexts texts;
        VARIANT variants[kMostArguments];
        for (std::size_t i = 0; i < count; ++i)
            set(variants[count - 1 - i], texts, arguments[i]);
        DISPPARAMS parameters{variants, nullptr, static_cast<UINT>(count), 0};
        OwnedVariant answer;
        invoke(control_.get(), numberOf(operation), DISPATCH_METHOD, parameters, &answer.get());
        if (V_VT(&answer.get()) == VT_I4)
            return V_I4(&answer.get());
        return toLong(valueOf(answer.get()), platform_.locale());
    }

    void put(std::int32_t dispatchId, bool value) override {
        VARIANT argument;
        V_VT(&argument) = VT_BOOL;
        V_BOOL(&argument) = boolOf(value);
        DISPID propertyValue = DISPID_PROPERTYPUT;
        DISPPARAMS parameters{&argument, &propertyValue, 1, 1};
        invoke(control_.get(), dispatchId, DISPATCH_PROPERTYPUT, parameters, nullptr);
    }

    ObjectRef member(StringView name) override {
        DISPPARAMS none{};
        const auto value = invoke(control_.get(), dispatchIdOf(control_.get(), name),
                                  DISPATCH_METHOD | DISPATCH_PROPERTYGET, none);
        const auto* object = value.as<ObjectRef>();
        if (!object)
            throw RuntimeError(ErrorNumber::MemberNotFound);
        return *object;
    }

  private:
    DISPID numberOf(Operation operation) {
        if (operation != Operation::PrintEnd)
            return static_cast<DISPID>(operation);
        if (!printEnd_)
            printEnd_ = dispatchIdOf(control_.get(), nameOf(operation));
        return *printEnd_;
    }

    static void set(VARIANT& variant, LentTexts& texts, const Argument& argument) {
        if (const auto* text = std::get_if<StringView>(&argument)) {
            V_VT(&variant) = VT_BSTR;
            V_BSTR(&variant) = texts.lend(*text);
            return;
        }
        V_VT(&variant) = VT_I4;
        // A window handle has 32 significant bits on every Windows.
        if (const auto* window = std::get_if<WindowHandle>(&argument))
            V_I4(&variant) = static_cast<LONG>(window->value);
        else
            V_I4(&variant) = std::get<std::int32_t>(argument);
    }

    ComPtr<IDispatch> control_;
    Platform& platform_;
    std::optional<DISPID> printEnd_;
};

class ComForm final : public Form {
  public:
    ComForm(Platform& platform, std::shared_ptr<WindowClass> windowClass)
        : windowClass_(std::move(windowClass)), hosted_(createControl(), window_.get()),
          control_(hosted_.control().as<IDispatch>(), platform) {}

    Control& ll60() override { return control_; }
    WindowHandle hWnd() override { return {reinterpret_cast<std::intptr_t>(window_.get())}; }
    bool visible() override { return IsWindowVisible(window_.get()) != FALSE; }
    void hide() override { ShowWindow(window_.get(), SW_HIDE); }

  private:
    std::shared_ptr<WindowClass> windowClass_; // outlives the window
    HiddenWindow window_;
    HostedControl hosted_;
    ComControl control_;
};

} // namespace

std::unique_ptr<Form> ComFormFactory::create() {
    if (!windowClass_)
        windowClass_ = std::make_shared<WindowClass>();
    return std::make_unique<ComForm>(platform_, windowClass_);
}

} // namespace kvtdruck::com
