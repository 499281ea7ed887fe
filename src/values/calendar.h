// Dates as days of the calendar.
#pragma once

#include "values/variant.h"

#include <chrono>

namespace kvtdruck {

/// A calendar day with a time on it.
struct CalendarTime {
    std::chrono::year_month_day date;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The calendar day and the time, to the second; run-time error 6 outside the years 100 to 9999.
CalendarTime calendarTimeOf(Date date);

} // namespace kvtdruck
