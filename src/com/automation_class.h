// What all twenty classes share: reference counting, a dual interface, late-bound calls.
#pragma once

#include "com/counted.h"
#include "com/server.h"
#include "com/variants.h"

#include <oaidl.h>

namespace kvtdruck::com {

/// The type information of the dual interface `iid`, as callers by dispatch see it.
ComPtr<ITypeInfo> typeInfoOf(REFIID iid);

/// A late-bound call of an operation of `object`, which is the dual interface that `info` describes: each argument
/// is coerced into a temporary of its parameter's type, so that values, variables and by-reference variants serve
/// alike. No operation assigns to its arguments, so nothing is written back. Wrong counts and types are the
/// caller's errors.
HRESULT invokeOperation(IDispatch* object, ITypeInfo* info, DISPID member, WORD flags, const DISPPARAMS& arguments,
                        VARIANT* result, UINT* wrongArgument);

/// A class with one dual interface. Errors within operations never become COM errors, and ISupportErrorInfo says
/// so.
template <class Interface>
class AutomationClass : public Counted<Interface, ISupportErrorInfo> {
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
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        HRESULT result = S_OK;
        const auto failure = guarded([&] { result = typeInfo()->GetIDsOfNames(names, count, ids); });
        return FAILED(failure) ? failure : result;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO*, UINT* wrongArgument) override {
        if (!arguments)
            return E_INVALIDARG;
        HRESULT answer = S_OK;
        const auto failure = guarded([&] {
            answer = invokeOperation(static_cast<Interface*>(this), typeInfo().get(), member, flags, *arguments,
                                     result, wrongArgument);
        });
        return FAILED(failure) ? failure : answer;
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID) override { return S_FALSE; }

  protected:
    void* interfaceOf(REFIID iid) override {
        return iid == IID_IDispatch ? static_cast<Interface*>(this)
                                    : Counted<Interface, ISupportErrorInfo>::interfaceOf(iid);
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

    /// An operation's frame: its result reaches the caller and the HRESULT is S_OK, whatever happens inside.
    template <class Result, class Body>
    static HRESULT answer(Result* result, Body&& body) noexcept {
        if (!result)
            return E_POINTER;
        *result = Result{};
        guarded([&] { *result = body(); });
        return S_OK;
    }

  private:
    ComPtr<ITypeInfo> typeInfo() {
        if (!typeInfo_)
            typeInfo_ = typeInfoOf(__uuidof(Interface));
        return typeInfo_;
    }

    ComPtr<ITypeInfo> typeInfo_;
    LiveObject live_;
};

} // namespace kvtdruck::com
