// By-reference parameters of the vtable, as the component takes them: copied, or counted, when the operation
// begins, since what they refer to is the host's and may be gone as soon as foreign code has run. None of these
// runs any but the counting of a reference. A null pointer counts as the type's zero.
#pragma once

#include "com/foreign_object.h"
#include "com/variants.h"

namespace kvtdruck::com {

template <class T>
T in(const T* parameter) {
    return parameter ? *parameter : T{};
}
inline std::int32_t in(const LONG* parameter) {
    return parameter ? static_cast<std::int32_t>(*parameter) : 0;
}
inline String in(const BSTR* parameter) {
    return parameter ? String(textOf(*parameter)) : String();
}
/// What the component has no kind of value for (an array, a record) becomes one that can't be used either, so that
/// it fails where the operation uses it and not before the operation begins.
inline Variant in(const VARIANT* parameter) {
    if (!parameter)
        return {};
    try {
        return valueOf(*parameter);
    } catch (const RuntimeError&) {
        return ErrorValue{DISP_E_TYPEMISMATCH};
    }
}
template <class Interface>
ComPtr<Interface> in(Interface* const* parameter) {
    return parameter ? ComPtr<Interface>(*parameter) : ComPtr<Interface>();
}
inline ObjectRef in(IDispatch* const* parameter) {
    return parameter ? foreignObject(*parameter) : nullptr;
}

/// A truth value: anything but 0 is true.
inline bool truth(const VARIANT_BOOL* parameter) {
    return parameter && *parameter != VARIANT_FALSE;
}

} // namespace kvtdruck::com
