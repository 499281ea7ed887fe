// Texts and values on their way between the component and Automation.
#pragma once

#include "values/text.h"
#include "values/variant.h"

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace kvtdruck::com {

/// A COM string that is freed at the end.
class Bstr {
  public:
    explicit Bstr(BSTR text = nullptr) : text_(text) {}
    explicit Bstr(StringView text);
    Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    Bstr& operator=(Bstr&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~Bstr() {
        if (text_)
            SysFreeString(text_);
    }

    BSTR get() const { return text_; }
    /// Gives the string away.
    BSTR release() { return std::exchange(text_, nullptr); }
    StringView text() const;

  private:
    BSTR text_;
};

/// The text of a lent COM string; a null one is empty.
StringView textOf(BSTR text);

/// Texts lent to the callee of one call, by value, as COM strings. Nobody but their owner may free or change such
/// strings, so that short ones need no memory of their own: they lie here, laid out as a COM string is (its length
/// in bytes, its letters, a null:
/// https://learn.microsoft.com/en-us/previous-versions/windows/desktop/automat/bstr).
class LentTexts {
  public:
    /// Valid as long as this object.
    BSTR lend(StringView text);

  private:
    static constexpr std::size_t kUnitsOfLength = sizeof(std::uint32_t) / sizeof(char16_t);

    alignas(std::uint32_t) char16_t place_[256];
    std::size_t used_ = 0;
    std::vector<Bstr> long_; ///< those that have no room
};

/// Lets go of what `variant` holds, as VariantClear does, which numbers need not be asked to.
inline void clear(VARIANT& variant) {
    constexpr auto bit = [](VARTYPE type) { return 1U << type; };
    constexpr auto plain = bit(VT_EMPTY) | bit(VT_I2) | bit(VT_I4) | bit(VT_R4) | bit(VT_R8) | bit(VT_BOOL);
    if (V_VT(&variant) > VT_BOOL || (bit(V_VT(&variant)) & plain) == 0)
        VariantClear(&variant);
}

/// A VARIANT that is cleared at the end.
class OwnedVariant {
  public:
    OwnedVariant() { V_VT(&variant_) = VT_EMPTY; }
    explicit OwnedVariant(const Variant& value);
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() { clear(variant_); }

    VARIANT& get() { return variant_; }
    /// Gives the contents away.
    VARIANT detach();

  private:
    VARIANT variant_;
};

/// The value that `variant` holds, its references followed. Kinds that the component does not know become the
/// nearest one that holds all their values. An array, or a record, is run-time error 13.
Variant valueOf(const VARIANT& variant);

/// A new VARIANT with `value`, which the caller clears.
VARIANT variantOf(const Variant& value);

/// The Automation form of a truth value.
inline VARIANT_BOOL boolOf(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

} // namespace kvtdruck::com
