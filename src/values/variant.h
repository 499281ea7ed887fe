// Automation values: what a cell of the host's parameter array or a getter's result can hold, how such values
// compare and how they turn into text and numbers.
#pragma once

#include "values/locale.h"
#include "values/object.h"
#include "values/text.h"

#include <concepts>
#include <cstdint>
#include <variant>

namespace kvtdruck {

struct Empty {
    bool operator==(const Empty&) const = default;
};

struct Null {
    bool operator==(const Null&) const = default;
};

/// A fixed-point amount: ten-thousandths of a unit.
struct Currency {
    std::int64_t tenThousandths = 0;
    bool operator==(const Currency&) const = default;
};

/// A 96-bit integer divided by a power of ten (`scale` 0 to 28).
struct Decimal {
    std::uint64_t low = 0;
    std::uint32_t high = 0;
    std::uint8_t scale = 0;
    bool negative = false;
    bool operator==(const Decimal&) const = default;
};

/// Days since 30 December 1899; the fraction is the time of day (for negative values, too, it counts forward).
struct Date {
    double days = 0;
    bool operator==(const Date&) const = default;
};

/// An error value (not a run-time error): nothing can be made of it.
struct ErrorValue {
    std::int32_t code = 0;
    bool operator==(const ErrorValue&) const = default;
};

/// The types that a value can be asked to take.
enum class ValueType { Boolean, Integer, Long, Single, Double, Date, Text, Object, Variant };

/// Whether `Value`, a std::variant, can hold what a `T` is without a conversion.
template <class T, class Value>
concept AlternativeOf = std::is_constructible_v<Value, std::in_place_type_t<std::remove_cvref_t<T>>, T>;

/// One Automation value. Copies are deep but for objects, which are shared.
class Variant {
  public:
    using Value = std::variant<Empty, Null, bool, std::uint8_t, std::int16_t, std::int32_t, float, double, Currency,
                               Decimal, Date, String, ObjectRef, ErrorValue>;

    Variant() = default;
    /// Any of the values that it can hold; copies and moves are left to their own constructors.
    template <class T>
    requires(!std::is_same_v<std::remove_cvref_t<T>, Variant> && AlternativeOf<T, Value>)
        Variant(T&& value) // NOLINT(bugprone-forwarding-reference-overload)
        : value_(std::in_place_type<std::remove_cvref_t<T>>, std::forward<T>(value)) {}
    /// What has the value's type already is taken over in its place.
    template <class T>
    requires(!std::is_same_v<std::remove_cvref_t<T>, Variant> && AlternativeOf<T, Value>) Variant&
    operator=(T&& value) {
        using Held = std::remove_cvref_t<T>;
        if (auto* held = std::get_if<Held>(&value_))
            *held = std::forward<T>(value);
        else
            value_.emplace<Held>(std::forward<T>(value));
        return *this;
    }
    Variant(StringView text) : value_(std::in_place_type<String>, text) {}
    Variant(const char16_t* text) : value_(std::in_place_type<String>, text) {}

    const Value& value() const { return value_; }
    template <class T>
    const T* as() const {
        return std::get_if<T>(&value_);
    }

    /// Makes it an empty text, to be filled; a text that it was before gives its room.
    String& emptyText() {
        if (auto* text = std::get_if<String>(&value_)) {
            text->clear();
            return *text;
        }
        return value_.emplace<String>();
    }

    bool isEmpty() const { return as<Empty>() != nullptr; }
    bool isNull() const { return as<Null>() != nullptr; }

    /// Same type and same value (not the Automation comparison).
    bool operator==(const Variant&) const = default;

  private:
    Value value_;
};

/// How a comparison with an Automation value ends: with Null it is neither true nor false.
enum class Comparison { Equal, Unequal, Undecided };

/// `value = number`. A text is taken as the number in it, in the notation of `locale`; run-time error 13 where it
/// is none. Empty equals 0; True equals -1.
Comparison compareWithNumber(const Variant& value, double number, const Locale& locale);

/// `value = True` or `value = False`. A text is taken as the number in it or as the locale's (or the English) truth
/// word; run-time error 13 where it is neither.
Comparison compareWithBoolean(const Variant& value, bool truth, const Locale& locale);

/// `value` compared as a text with `text`, letter by letter; Empty equals "".
Comparison compareWithText(const Variant& value, StringView text, const Locale& locale);

/// Shorthands: whether the comparison is decided and equal.
bool equals(const Variant& value, double number, const Locale& locale);
bool equals(const Variant& value, StringView text, const Locale& locale);
/// For true and false themselves: a text literal or a whole number must not come here by conversion.
template <std::same_as<bool> Truth>
bool equals(const Variant& value, Truth truth, const Locale& locale) {
    return compareWithBoolean(value, truth, locale) == Comparison::Equal;
}

/// The general conversion to text. Empty gives ""; Null is run-time error 94; an object or an error value is 13.
String toText(const Variant& value, const Locale& locale);
/// Appends `toText(value, locale)` to `text`.
void appendText(String& text, const Variant& value, const Locale& locale);

/// Conversions to numbers: Null is run-time error 94, a text that is no number 13, a value out of range 6. Empty is
/// 0.
double toDouble(const Variant& value, const Locale& locale);
float toSingle(const Variant& value, const Locale& locale);
std::int16_t toInteger(const Variant& value, const Locale& locale);
std::int32_t toLong(const Variant& value, const Locale& locale);
bool toBoolean(const Variant& value, const Locale& locale);

/// To the nearest integer, halves to the even one; run-time error 6 outside the type's range, and for NaN.
std::int16_t roundToInteger(double value);
std::int32_t roundToLong(double value);

/// The foreign result `value` coerced to `type` (as `VariantChangeType` does it, with truth values as the locale's
/// words): what can't be coerced, Null included, is run-time error 13, a number out of range run-time error 6.
Variant coerced(const Variant& value, ValueType type, const Locale& locale);
/// The same in place: what has the type already stays as it is.
void coerce(Variant& value, ValueType type, const Locale& locale);

} // namespace kvtdruck
