#include "values/calendar.h"

#include "values/runtime_error.h"

#include <algorithm>
#include <cmath>

namespace kvtdruck {
namespace {

constexpr std::chrono::sys_days kDayZero{std::chrono::year{1899} / 12 / 30};
constexpr double kFirstDay = -657434; // 1 January 100
constexpr double kLastDay = 2958465;  // 31 December 9999

std::chrono::year_month_day calendarDay(int year, int month, int day) {
    return {std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
            std::chrono::day{static_cast<unsigned>(day)}};
}

} // namespace

Date dateOf(int year, int month, int day, int hour, int minute, int second) {
    const auto days =
        static_cast<double>((std::chrono::sys_days{calendarDay(year, month, day)} - kDayZero).count());
    const double time = (hour * 3600 + minute * 60 + second) / 86400.0;
    return {days < 0 ? days - time : days + time};
}

std::optional<Date> dayIfAny(int year, int month, int day) {
    constexpr int kBeyondEveryDay = 32; // a day or month of 257 would pass for 1: the calendar keeps eight bits
    if (year < 0 || year > 9999 || month < 0 || month >= kBeyondEveryDay || day < 0 || day >= kBeyondEveryDay ||
        !calendarDay(year, month, day).ok())
        return std::nullopt;
    return dateOf(year, month, day);
}

// The tiny addition makes up for fractions of a day that binary numbers can't hold; half a second is still rounded
// down, as Automation does it.
CalendarTime calendarTimeOf(Date date) {
    if (!(date.days > kFirstDay - 1 && date.days < kLastDay + 1))
        throw RuntimeError(ErrorNumber::Overflow);
    const double day = std::trunc(date.days);
    const double seconds = std::min(std::abs(date.days - day) + 1e-11, 1.0) * 86400;
    const int whole = static_cast<int>(std::ceil(seconds - 0.5));
    CalendarTime time;
    time.date = kDayZero + std::chrono::days{static_cast<int>(day) + whole / 86400};
    time.hour = whole / 3600 % 24;
    time.minute = whole / 60 % 60;
    time.second = whole % 60;
    return time;
}

} // namespace kvtdruck
