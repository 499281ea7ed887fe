// Automation dates as calendar days (proleptic Gregorian calendar) and times of day.
#pragma once

#include "values/variant.h"

#include <chrono>
#include <optional>

namespace kvtdruck {

/// The date of a calendar day that there is, and of a time on it.
Date dateOf(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

/// The date of a calendar day of the years 0 to 9999; nothing where there is no such day.
std::optional<Date> dayIfAny(int year, int month, int day);

/// A calendar day and a time on it, to the second.
struct CalendarTime {
    std::chrono::year_month_day date;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// Splits a date, rounded to the second; run-time error 6 outside the years 100 to 9999.
CalendarTime calendarTimeOf(Date date);

} // namespace kvtdruck
