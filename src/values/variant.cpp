#include "values/variant.h"

#include "values/characters.h"
#include "values/conversion.h"
#include "values/overloaded.h"
#include "values/runtime_error.h"

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace kvtdruck {

namespace {

[[noreturn]] void fail(ErrorNumber number) {
    throw RuntimeError(number);
}

double finite(double value) {
    if (std::isinf(value))
        fail(ErrorNumber::Overflow);
    return value;
}

/// The double nearest to a Currency or Decimal value: found through its digits, which is where rounding happens
/// once.
template <class FixedPoint>
double nearestDouble(const FixedPoint& value) {
    const Locale& anyLocale = germanLocale();
    return numberIn(textOf(value, anyLocale), anyLocale).value_or(0);
}

std::optional<bool> truthIn(StringView text, const Locale& locale) {
    if (sameWord(text, locale.trueText) || sameWord(text, u"True"))
        return true;
    if (sameWord(text, locale.falseText) || sameWord(text, u"False"))
        return false;
    return std::nullopt;
}

double numberOf(bool truth) {
    return truth ? -1 : 0;
}

Comparison decided(bool equal) {
    return equal ? Comparison::Equal : Comparison::Unequal;
}

template <class Whole>
Whole rounded(double value) {
    // The default rounding mode takes halves to the even neighbour.
    const double nearest = std::nearbyint(value);
    if (!(nearest >= std::numeric_limits<Whole>::min() && nearest <= std::numeric_limits<Whole>::max()))
        fail(ErrorNumber::Overflow);
    return static_cast<Whole>(nearest);
}

Date toDate(const Variant& value, const Locale& locale) {
    if (const String* text = value.as<String>()) {
        const auto date = dateIn(*text, locale);
        if (!date)
            fail(ErrorNumber::TypeMismatch);
        return *date;
    }
    const Date date{toDouble(value, locale)};
    calendarTimeOf(date); // raises the error of a date beyond the calendar
    return date;
}

} // namespace

Comparison compareWithNumber(const Variant& value, double number, const Locale& locale) {
    return value.isNull() ? Comparison::Undecided : decided(toDouble(value, locale) == number);
}

Comparison compareWithBoolean(const Variant& value, bool truth, const Locale& locale) {
    if (const String* text = value.as<String>())
        if (const auto word = truthIn(*text, locale))
            return decided(*word == truth);
    return compareWithNumber(value, numberOf(truth), locale);
}

Comparison compareWithText(const Variant& value, StringView text, const Locale& locale) {
    return value.isNull() ? Comparison::Undecided : decided(toText(value, locale) == text);
}

bool equals(const Variant& value, double number, const Locale& locale) {
    return compareWithNumber(value, number, locale) == Comparison::Equal;
}

bool equals(const Variant& value, StringView text, const Locale& locale) {
    return compareWithText(value, text, locale) == Comparison::Equal;
}

String toText(const Variant& value, const Locale& locale) {
    String text;
    appendText(text, value, locale);
    return text;
}

void appendText(String& text, const Variant& value, const Locale& locale) {
    std::visit(Overloaded{[](Empty) {}, [](Null) { fail(ErrorNumber::InvalidUseOfNull); },
                          [&](bool truth) { text += truth ? locale.trueText : locale.falseText; },
                          [&](std::uint8_t number) { text += decimal(number); },
                          [&](std::int16_t number) { text += decimal(number); },
                          [&](std::int32_t number) { text += decimal(number); },
                          [&](float number) { appendTextOf(text, number, locale); },
                          [&](double number) { appendTextOf(text, number, locale); },
                          [&](const String& content) { text += content; },
                          [](const ObjectRef&) { fail(ErrorNumber::TypeMismatch); },
                          [](ErrorValue) { fail(ErrorNumber::TypeMismatch); },
                          [&](const auto& number) { text += textOf(number, locale); }},
               value.value());
}

double toDouble(const Variant& value, const Locale& locale) {
    return std::visit(
        Overloaded{[](Empty) { return 0.0; }, [](Null) -> double { fail(ErrorNumber::InvalidUseOfNull); },
                   [](bool truth) { return numberOf(truth); },
                   [](Currency amount) { return nearestDouble(amount); },
                   [](const Decimal& number) { return nearestDouble(number); }, [](Date date) { return date.days; },
                   [&](const String& text) {
                       const auto number = numberIn(text, locale);
                       if (!number)
                           fail(ErrorNumber::TypeMismatch);
                       return finite(*number);
                   },
                   [](const ObjectRef&) -> double { fail(ErrorNumber::TypeMismatch); },
                   [](ErrorValue) -> double { fail(ErrorNumber::TypeMismatch); },
                   [](auto number) { return static_cast<double>(number); }},
        value.value());
}

float toSingle(const Variant& value, const Locale& locale) {
    if (const float* number = value.as<float>())
        return *number;
    const double number = toDouble(value, locale);
    if (std::abs(number) > std::numeric_limits<float>::max())
        fail(ErrorNumber::Overflow);
    return static_cast<float>(number);
}

std::int16_t toInteger(const Variant& value, const Locale& locale) {
    if (const std::int16_t* number = value.as<std::int16_t>())
        return *number;
    return roundToInteger(toDouble(value, locale));
}

std::int32_t toLong(const Variant& value, const Locale& locale) {
    if (const std::int32_t* number = value.as<std::int32_t>())
        return *number;
    return roundToLong(toDouble(value, locale));
}

bool toBoolean(const Variant& value, const Locale& locale) {
    if (const String* text = value.as<String>())
        if (const auto word = truthIn(*text, locale))
            return *word;
    return toDouble(value, locale) != 0;
}

std::int16_t roundToInteger(double value) {
    return rounded<std::int16_t>(value);
}

std::int32_t roundToLong(double value) {
    return rounded<std::int32_t>(value);
}

namespace {

bool isOf(const Variant& value, ValueType type) {
    switch (type) {
    case ValueType::Boolean:
        return value.as<bool>() != nullptr;
    case ValueType::Integer:
        return value.as<std::int16_t>() != nullptr;
    case ValueType::Long:
        return value.as<std::int32_t>() != nullptr;
    case ValueType::Single:
        return value.as<float>() != nullptr;
    case ValueType::Double:
        return value.as<double>() != nullptr;
    case ValueType::Text:
        return value.as<String>() != nullptr;
    case ValueType::Variant:
        return true;
    default:
        return false;
    }
}

} // namespace

void coerce(Variant& value, ValueType type, const Locale& locale) {
    if (!isOf(value, type))
        value = coerced(value, type, locale);
}

void Object::read(MemberId member, Variant& value) {
    value = call(member, {});
}

Variant coerced(const Variant& value, ValueType type, const Locale& locale) {
    if (type == ValueType::Variant)
        return value;
    if (value.isNull())
        fail(ErrorNumber::TypeMismatch);
    switch (type) {
    case ValueType::Boolean:
        return toBoolean(value, locale);
    case ValueType::Integer:
        return toInteger(value, locale);
    case ValueType::Long:
        return toLong(value, locale);
    case ValueType::Single:
        return toSingle(value, locale);
    case ValueType::Double:
        return toDouble(value, locale);
    case ValueType::Date:
        return toDate(value, locale);
    case ValueType::Text:
        return toText(value, locale);
    default:
        if (!value.as<ObjectRef>())
            fail(ErrorNumber::TypeMismatch);
        return value;
    }
}

} // namespace kvtdruck
