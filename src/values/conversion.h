// Numbers and dates as text, exactly as OLE Automation forms them, and back.
#pragma once

#include "values/calendar.h"
#include "values/locale.h"
#include "values/text.h"
#include "values/variant.h"

#include <cstdint>
#include <optional>

namespace kvtdruck {

/// Up to 15 significant digits (halves rounded away from zero), the locale's decimal sign, no thousands separators;
/// negative zero is "0". Numbers that, so rounded, are below 0.0001 or from 1E+15 on take the exponent form
/// ("1E+15", "1,5E-05"). NaN and the infinities are "1,#QNAN", "-1,#IND", "1,#INF" and "-1,#INF".
String textOf(double number, const Locale& locale);

/// As for a double, with up to 7 significant digits: the exponent form begins at 1E+07.
String textOf(float number, const Locale& locale);

/// Date in the locale's short form, followed by a blank and the time where there is one; a pure time of day (day 0)
/// is the time alone. Run-time error 6 outside the years 100 to 9999.
String textOf(Date date, const Locale& locale);

/// The day alone, in the locale's short form; run-time error 6 outside the years 100 to 9999.
String shortDateOf(Date date, const Locale& locale);

String textOf(Currency amount, const Locale& locale);
String textOf(const Decimal& number, const Locale& locale);

/// Appends `textOf(number, locale)` to `text`.
void appendTextOf(String& text, double number, const Locale& locale);
void appendTextOf(String& text, float number, const Locale& locale);

/// The number in ten-thousandths, where it is the double nearest to such an amount: as most numbers are. At most 15
/// digits tell it from every other, so they are its text.
std::optional<std::int64_t> tenThousandths(double number);

/// The number that `text` holds in the notation of `locale` (thousands separators, sign before or behind,
/// parentheses for a negative number, currency symbol, exponent, &H and &O); nothing where it holds none. Infinity
/// where the number is too large for a double.
std::optional<double> numberIn(StringView text, const Locale& locale);

/// The date, the time of day, or both that `text` holds: the locale's order of day, month and year (or year first,
/// where it has four digits), separated by ".", "-", "/" or blanks; two-digit years mean 1930 to 2029. Nothing
/// where it holds none.
std::optional<Date> dateIn(StringView text, const Locale& locale);

} // namespace kvtdruck
