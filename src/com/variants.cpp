#include "com/variants.h"

#include "com/com_error.h"
#include "com/foreign_object.h"
#include "values/overloaded.h"

#include <cstring>
#include <iterator>

namespace kvtdruck::com {
namespace {

Decimal decimalOf(const DECIMAL& value) {
    return {value.Lo64, value.Hi32, value.scale, (value.sign & DECIMAL_NEG) != 0};
}

// A 64-bit integer does not fit a double; a decimal holds it whole.
Decimal decimalOf(std::uint64_t magnitude, bool negative) {
    return {magnitude, 0, 0, negative};
}

Decimal decimalOf(std::int64_t value) {
    const auto magnitude = static_cast<std::uint64_t>(value);
    return value < 0 ? decimalOf(0 - magnitude, true) : decimalOf(magnitude, false);
}

Variant unreferenced(const VARIANT& variant) {
    switch (V_VT(&variant)) {
    case VT_EMPTY:
        return {};
    case VT_NULL:
        return Null{};
    case VT_BOOL:
        return V_BOOL(&variant) != VARIANT_FALSE;
    case VT_I1:
        return static_cast<std::int16_t>(V_I1(&variant));
    case VT_UI1:
        return std::uint8_t{V_UI1(&variant)};
    case VT_I2:
        return std::int16_t{V_I2(&variant)};
    case VT_UI2:
        return std::int32_t{V_UI2(&variant)};
    case VT_I4:
    case VT_INT:
        return static_cast<std::int32_t>(V_I4(&variant));
    case VT_UI4:
    case VT_UINT:
        return static_cast<double>(V_UI4(&variant));
    case VT_I8:
        return decimalOf(V_I8(&variant));
    case VT_UI8:
        return decimalOf(V_UI8(&variant), false);
    case VT_R4:
        return float{V_R4(&variant)};
    case VT_R8:
        return double{V_R8(&variant)};
    case VT_CY:
        return Currency{V_CY(&variant).int64};
    case VT_DECIMAL:
        return decimalOf(V_DECIMAL(&variant));
    case VT_DATE:
        return Date{V_DATE(&variant)};
    case VT_BSTR:
        return String(textOf(V_BSTR(&variant)));
    case VT_DISPATCH:
    case VT_UNKNOWN:
        return foreignObject(V_UNKNOWN(&variant));
    case VT_ERROR:
        return ErrorValue{V_ERROR(&variant)};
    default:
        throw RuntimeError(ErrorNumber::TypeMismatch);
    }
}

} // namespace

Bstr::Bstr(StringView text)
    : text_(SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()))) {
    if (!text_)
        throw RuntimeError(ErrorNumber::OutOfMemory);
}

StringView Bstr::text() const {
    return textOf(text_);
}

StringView textOf(BSTR text) {
    return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)};
}

BSTR LentTexts::lend(StringView text) {
    const auto needed = kUnitsOfLength + text.size() + 1;
    if (needed > std::size(place_) - used_)
        return long_.emplace_back(text).get();
    auto* const letters = place_ + used_ + kUnitsOfLength;
    const auto bytes = static_cast<std::uint32_t>(text.size() * sizeof(char16_t));
    std::memcpy(letters - kUnitsOfLength, &bytes, sizeof bytes);
    text.copy(letters, text.size());
    letters[text.size()] = u'\0';
    used_ += needed + needed % kUnitsOfLength; // the next length is aligned as well
    return reinterpret_cast<BSTR>(letters);
}

OwnedVariant::OwnedVariant(const Variant& value) : variant_(variantOf(value)) {}

VARIANT OwnedVariant::detach() {
    const auto contents = variant_;
    VariantInit(&variant_);
    return contents;
}

Variant valueOf(const VARIANT& variant) {
    if ((V_VT(&variant) & VT_BYREF) == 0)
        return unreferenced(variant);
    OwnedVariant copy;
    check(VariantCopyInd(&copy.get(), const_cast<VARIANT*>(&variant)));
    return unreferenced(copy.get());
}

VARIANT variantOf(const Variant& value) {
    VARIANT result;
    VariantInit(&result);
    const auto set = [&](VARTYPE type, auto& member, auto content) {
        V_VT(&result) = type;
        member = content;
    };
    std::visit(Overloaded{
                   [](Empty) {},
                   [&](Null) { V_VT(&result) = VT_NULL; },
                   [&](bool truth) { set(VT_BOOL, V_BOOL(&result), boolOf(truth)); },
                   [&](std::uint8_t number) { set(VT_UI1, V_UI1(&result), number); },
                   [&](std::int16_t number) { set(VT_I2, V_I2(&result), number); },
                   [&](std::int32_t number) { set(VT_I4, V_I4(&result), number); },
                   [&](float number) { set(VT_R4, V_R4(&result), number); },
                   [&](double number) { set(VT_R8, V_R8(&result), number); },
                   [&](Currency amount) { set(VT_CY, V_CY(&result).int64, amount.tenThousandths); },
                   [&](const Decimal& number) {
                       auto& target = V_DECIMAL(&result);
                       target.Lo64 = number.low;
                       target.Hi32 = number.high;
                       target.scale = number.scale;
                       target.sign = number.negative ? DECIMAL_NEG : 0;
                       V_VT(&result) = VT_DECIMAL; // last: the number's first word is the type's place
                   },
                   [&](Date date) { set(VT_DATE, V_DATE(&result), date.days); },
                   [&](const String& text) { set(VT_BSTR, V_BSTR(&result), Bstr(text).release()); },
                   [&](const ObjectRef& object) { result = referenceTo(object); },
                   [&](ErrorValue error) { set(VT_ERROR, V_ERROR(&result), error.code); },
               },
               value.value());
    return result;
}

} // namespace kvtdruck::com
