// What all twenty classes share: reference counting, a dual interface, late-bound calls.
#pragma once

#include "com/counted.h"
#include "com/server.h"
#include "com/variants.h"

#include <oaidl.h>
#include <ocidl.h>

namespace kvtdruck::com {

/// The type information of a coclass, or of a dual interface as callers by dispatch see it.
ComPtr<ITypeInfo> typeInfoOf(REFGUID id);

/// A late-bound call of an operation of `object`, which is the dual interface that `info` describes: each argument
/// is coerced into a temporary of its parameter's type, so that values, variables and by-reference variants serve
/// alike. No operation assigns to its arguments, so nothing is written back. Wrong counts and types are the
/// caller's errors, and the answers are those of the system's own Invoke.
///
/// That one (ITypeInfo::Invoke, which DispInvoke calls) can't do it: for a parameter by reference it takes a value,
/// or a reference to the parameter's very type. A script's variable comes as a reference to a VARIANT and is
/// DISP_E_TYPEMISMATCH there, so that no script could hand its variables over. See
/// https://blogs.msdn.microsoft.com/ericlippert/2003/09/29/in-out-in-out-make-up-your-mind-already/
HRESULT invokeOperation(IDispatch* object, ITypeInfo* info, DISPID member, WORD flags, const DISPPARAMS& arguments,
                        VARIANT* result, UINT* wrongArgument);

/// A coclass of the type library with one dual interface, whose objects live in the apartment that they were made
/// in and name their class to whom asks (IProvideClassInfo). Errors within operations never become COM errors, and
/// ISupportErrorInfo says so.
///
/// An operation calls foreign objects and lets the host process its messages, and either may let go of the object's
/// last reference. So whatever runs here holds the object until it is done.
template <class CoClass, class Interface>
class AutomationClass : public Counted<Interface, ISupportErrorInfo, IProvideClassInfo> {
  public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count)
            return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (!info)
            return E_POINTER;
        *info = nullptr;
        return index != 0 ? DISP_E_BADINDEX : guarded([&] { *info = typeInfo().detach(); });
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        if (reserved != IID_NULL)
            return DISP_E_UNKNOWNINTERFACE;
        HRESULT result = S_OK;
        const auto failure = guarded([&] { result = typeInfo()->GetIDsOfNames(names, count, ids); });
        return FAILED(failure) ? failure : result;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO*, UINT* wrongArgument) override {
        if (result)
            VariantInit(result); // hosts hand in what was never initialised, and clear it whatever the answer is
        if (reserved != IID_NULL)
            return DISP_E_UNKNOWNINTERFACE;
        if (!arguments)
            return E_INVALIDARG;
        const ComPtr<Interface> self(this);
        HRESULT answer = S_OK;
        const auto failure = guarded([&] {
            answer = invokeOperation(static_cast<Interface*>(this), typeInfo().get(), member, flags, *arguments,
                                     result, wrongArgument);
        });
        return FAILED(failure) ? failure : answer;
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID) override { return S_FALSE; }

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
        if (!info)
            return E_POINTER;
        *info = nullptr;
        return guarded([&] { *info = typeInfoOf(__uuidof(CoClass)).detach(); });
    }

  protected:
    using Base = Counted<Interface, ISupportErrorInfo, IProvideClassInfo>;

    void* interfaceOf(REFIID iid) override {
        return iid == IID_IDispatch ? static_cast<Interface*>(this) : Base::interfaceOf(iid);
    }

    /// Runs `body`; no C++ exception leaves the DLL.
    template <class Body>
    static HRESULT guarded(Body&& body) noexcept {
        try {
            body();
            return S_OK;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (...) {
            return E_FAIL;
        }
    }

    /// An operation's frame: the HRESULT is S_OK, whatever happens inside. A caller that brings the object's
    /// pointer to another thread without COM's help is refused: the foreign objects behind it are bound to this
    /// one's.
    template <class Body>
    HRESULT run(Body&& body) noexcept {
        if (!apartment_->isCurrent())
            return RPC_E_WRONG_THREAD;
        const ComPtr<Interface> self(this);
        guarded(body);
        return S_OK;
    }

    /// The frame of an operation with a result.
    template <class Result, class Body>
    HRESULT answer(Result* result, Body&& body) noexcept {
        if (!result)
            return E_POINTER;
        *result = Result{};
        return run([&] { *result = body(); });
    }

    Apartment& apartment() { return *apartment_; }

  private:
    // Foreign objects can be released on their own thread alone. An object whose last reference is dropped on
    // another one stays, and the DLL with it: the host has broken COM's rules, and a leak is the least harm.
    void end() override {
        if (apartment_->isCurrent())
            delete this;
    }

    ComPtr<ITypeInfo> typeInfo() {
        if (!typeInfo_)
            typeInfo_ = typeInfoOf(__uuidof(Interface));
        return typeInfo_;
    }

    LiveObject live_; // first, so that it is counted until all else is gone
    std::shared_ptr<Apartment> apartment_ = Apartment::current();
    ComPtr<ITypeInfo> typeInfo_;
};

} // namespace kvtdruck::com
