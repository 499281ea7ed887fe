// Objects of foreign libraries: what the component is handed or creates, reached late bound.
#pragma once

#include "com/com_ptr.h"
#include "values/object.h"

#include <oaidl.h>

namespace kvtdruck::com {

/// An object reached through its IDispatch, which it is asked for when a member's name is. One that has none (a
/// connection that answers by its vtable alone) is held and handed on all the same; calling a member of it is
/// run-time error 438.
class ForeignObject final : public Object {
  public:
    explicit ForeignObject(IUnknown* object) : object_(object) {}

    MemberId idOf(StringView name) override;
    Variant call(MemberId member, std::span<const Variant> arguments) override;
    void put(MemberId member, std::span<const Variant> arguments, const Variant& value) override;

    /// As which it was handed in.
    IUnknown* identity() const { return object_.get(); }

  private:
    ComPtr<IUnknown> object_;
    ComPtr<IDispatch> dispatch_;
};

/// A reference to `object`; an empty one for a null pointer.
ObjectRef foreignObject(IUnknown* object);

/// A VARIANT (VT_DISPATCH, or VT_UNKNOWN) with a counted reference to the COM object behind `object`.
VARIANT referenceTo(const ObjectRef& object);

/// The class of a ProgID, and a new object of a class; run-time error 429 where the class is not registered.
CLSID classIdOf(StringView progId);
ComPtr<IUnknown> createObject(REFCLSID id);

/// The number of member `name` of a foreign object; run-time error 438 where there is none, or no object.
DISPID dispatchIdOf(IDispatch* dispatch, StringView name);

/// One Invoke: `arguments` in reverse order, as Automation wants them; failures are run-time errors. The result is
/// given, or put into `answer`, an empty VARIANT.
Variant invoke(IDispatch* dispatch, DISPID member, WORD flags, DISPPARAMS& arguments);
void invoke(IDispatch* dispatch, DISPID member, WORD flags, DISPPARAMS& arguments, VARIANT* answer);

} // namespace kvtdruck::com
