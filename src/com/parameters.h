// By-reference parameters of the vtable, as the component takes them. A null pointer counts as the type's zero.
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
inline StringView in(const BSTR* parameter) {
    return parameter ? textOf(*parameter) : StringView();
}
inline Variant in(const VARIANT* parameter) {
    return parameter ? valueOf(*parameter) : Variant();
}
inline ObjectRef in(IDispatch* const* parameter) {
    return parameter ? foreignObject(*parameter) : nullptr;
}

/// A truth value: anything but 0 is true.
inline bool truth(const VARIANT_BOOL* parameter) {
    return parameter && *parameter != VARIANT_FALSE;
}

} // namespace kvtdruck::com
