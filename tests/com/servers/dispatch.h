// Late-bound objects as a scripting host or a foreign library offers them, on the component's portable objects; and
// the way back. Test code of its own: what is under test must not prove itself.
#pragma once

#include "com/counted.h"
#include "values/object.h"
#include "values/text.h"
#include "values/variant.h"

#include <windows.h>

#include <oleauto.h>

#include <atomic>
#include <span>
#include <vector>

namespace kvtdruck::test {

/// Objects of this library that live; the library may be unloaded at 0.
extern std::atomic<long> liveObjects;

/// The value of `variant`, references followed. Objects are wrapped.
Variant fromVariant(const VARIANT& variant);
VARIANT toVariant(const Variant& value);

BSTR toBstr(StringView text);

/// An object reached through IDispatch. The connection of a host whose dispatch form fails (ADO's, under Wine) is
/// asked through its own interface.
ObjectRef foreignObject(IDispatch* dispatch);

/// An Automation object: names and numbers to calls, run-time errors to EXCEPINFO.
class Dispatch : public com::Counted<IDispatch> {
  public:
    Dispatch() { ++liveObjects; }
    ~Dispatch() override { --liveObjects; }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters,
                                     VARIANT* result, EXCEPINFO* exception, UINT*) override;

  protected:
    /// The member's number, or DISPID_UNKNOWN.
    virtual DISPID idOf(StringView name) = 0;
    /// Calls the member with its arguments in order (a written property's value last). Run-time errors are raised.
    virtual Variant invoke(DISPID member, WORD flags, std::span<VARIANT* const> arguments) = 0;
};

/// A new Automation object that answers as `object` does, with one reference.
IDispatch* exposed(ObjectRef object);

} // namespace kvtdruck::test
