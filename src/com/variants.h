// Texts and values on their way between the component and Automation.
#pragma once

#include "values/text.h"
#include "values/variant.h"

#include <windows.h>

#include <oleauto.h>

#include <utility>

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

/// A VARIANT that is cleared at the end.
class OwnedVariant {
  public:
    OwnedVariant() { VariantInit(&variant_); }
    explicit OwnedVariant(const Variant& value);
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() { VariantClear(&variant_); }

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
