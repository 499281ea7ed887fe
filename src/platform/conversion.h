// Numbers and dates as text, exactly as OLE Automation forms them, and back.
#pragma once

#include "platform/locale.h"
#include "platform/text.h"
#include "platform/variant.h"

#include <optional>

namespace kvtdruck {

/// Up to 15 significant digits, the locale's decimal sign, no thousands separators, the exponent form ("1E+15") outside
/// the range that 15 digits show; negative zero is "0". NaN and the infinities are "-1,#IND", "1,#QNAN", "1,#INF", "-1,#INF".
String textOf(double number, const Locale& locale);

/// As for a double, with up to 7 significant digits.
String textOf(float number, const Locale& locale);

/// Date in the locale's short form, followed by a blank and the time where there is one; a pure time of day (day 0) is
/// the time alone. Run-time error 6 outside the years 100 to 9999.
String textOf(Date date, const Locale& locale);

String textOf(Currency amount, const Locale& locale);
String textOf(const Decimal& number, const Locale& locale);

/// The number that `text` holds in the notation of `locale` (thousands separators, sign before or behind, parentheses
/// for a negative number, currency symbol, exponent, &H and &O); nothing where it holds none.
std::optional<double> numberIn(StringView text, const Locale& locale);

/// The date of a calendar day (proleptic Gregorian calendar), and of a time on it.
Date dateOf(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

} // namespace kvtdruck
