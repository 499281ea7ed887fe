// Any bytes as the text or the number of a cell, made into every type and compared, in several notations.
#include "values/conversion.h"
#include "values/runtime_error.h"
#include "values/variant.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

using namespace kvtdruck;

/// Runs a step that may be refused with a run-time error.
template <class Step>
void refusable(const Step& step) {
    try {
        step();
    } catch (const RuntimeError&) {
    }
}

Locale americanLocale() {
    Locale locale = germanLocale();
    locale.decimalSign = u".";
    locale.thousandsSeparator = u",";
    locale.shortDate = u"M/d/yyyy";
    return locale;
}

void convert(const Variant& value, const Locale& locale) {
    for (const auto type : {ValueType::Boolean, ValueType::Integer, ValueType::Long, ValueType::Single,
                            ValueType::Double, ValueType::Date, ValueType::Text, ValueType::Variant})
        refusable([&] { toText(coerced(value, type, locale), locale); });
    refusable([&] { compareWithNumber(value, 1, locale); });
    refusable([&] { compareWithBoolean(value, true, locale); });
    refusable([&] { compareWithText(value, u"1", locale); });
}

template <class T>
T first(const std::uint8_t* data, std::size_t size) {
    std::array<std::uint8_t, sizeof(T)> bytes{};
    std::memcpy(bytes.data(), data, size < sizeof(T) ? size : sizeof(T));
    T value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::array kLocales{germanLocale(), americanLocale()};
    const String text = fromUtf8({reinterpret_cast<const char*>(data), size});
    const auto number = first<double>(data, size);
    for (const auto& locale : kLocales) {
        convert(text, locale);
        convert(number, locale);
        convert(static_cast<float>(number), locale);
        convert(Date{number}, locale);
        convert(Currency{first<std::int64_t>(data, size)}, locale);
    }
    return 0;
}
