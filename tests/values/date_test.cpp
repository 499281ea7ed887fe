// Dates as text, text as date, calendar days.
#include "values/conversion.h"

#include "values/expected.h"
#include "values/printers.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

using namespace kvtdruck;

namespace {

TEST(Dates, CalendarDays) {
    EXPECT_EQ(dateOf(1899, 12, 30).days, 0);
    EXPECT_EQ(dateOf(1899, 12, 31).days, 1);
    EXPECT_EQ(dateOf(1899, 12, 29).days, -1);
    EXPECT_EQ(dateOf(1900, 3, 1).days, 61);
    EXPECT_EQ(dateOf(2000, 1, 1).days, 36526);
    EXPECT_EQ(dateOf(100, 1, 1).days, -657434);
    EXPECT_EQ(dateOf(9999, 12, 31).days, 2958465);
    EXPECT_EQ(dateOf(2000, 1, 1, 12).days, 36526.5);
    EXPECT_EQ(dateOf(1899, 12, 29, 6).days, -1.25); // the fraction counts forward
}

TEST(Dates, AsText) {
    const std::vector<std::pair<double, StringView>> cases{
        {36526, u"01.01.2000"},
        {36526.5, u"01.01.2000 12:00:00"},
        {0, u"00:00:00"},
        {0.25, u"06:00:00"},
        {-0.25, u"06:00:00"},
        {1, u"31.12.1899"},
        {-1, u"29.12.1899"},
        {-1.25, u"29.12.1899 06:00:00"},
        {-657434, u"01.01.100"},
        {2958465, u"31.12.9999"},
        {2958465.75, u"31.12.9999 18:00:00"},
        {-657434.75, u"01.01.100 18:00:00"},
        {36526.99999, u"01.01.2000 23:59:59"},
        {36526.999999, u"02.01.2000 00:00:00"}, // rounded to the second, into the next day
    };
    for (const auto& [days, text] : cases)
        EXPECT_EQ(textOf(Date{days}, german), text) << days;
}

TEST(Dates, EverySecondOfADayIsShownAsItself) {
    for (int second = 1; second < 86400; ++second) {
        const Date date = dateOf(2012, 2, 29, second / 3600, second / 60 % 60, second % 60);
        ASSERT_EQ(dateIn(textOf(date, german), german), date);
        ASSERT_EQ(textOf(date, german).substr(0, 11), u"29.02.2012 ");
        char expected[16];
        std::snprintf(expected, sizeof expected, "%02d:%02d:%02d", second / 3600, second / 60 % 60, second % 60);
        ASSERT_EQ(toUtf8(textOf(date, german).substr(11)), expected);
    }
}

TEST(Dates, OutsideTheCalendarIsAnOverflow) {
    for (const double days : {-657435.0, 2958466.0, 1e300, -1e300, std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(errorOf([&] { textOf(Date{days}, german); }), 6) << days;
}

TEST(Dates, PatternsOfTheLocale) {
    Locale locale = german;
    const Date date = dateOf(2009, 3, 7, 15, 4, 5);
    const auto shown = [&](StringView shortDate, StringView time) {
        locale.shortDate = shortDate;
        locale.time = time;
        return textOf(date, locale);
    };
    EXPECT_EQ(shown(u"d.M.yyyy", u"H:mm:ss"), u"7.3.2009 15:04:05");
    EXPECT_EQ(shown(u"dd.MM.yy", u"HH.mm"), u"07.03.09 15.04");
    EXPECT_EQ(shown(u"yyyy-MM-dd", u"HH:mm:ss"), u"2009-03-07 15:04:05");
    EXPECT_EQ(shown(u"d/M/y", u"h:m:s"), u"7/3/9 3:4:5");
    EXPECT_EQ(shown(u"d. 'den' M.", u"H 'Uhr' m"), u"7. den 3. 15 Uhr 4");
    EXPECT_EQ(textOf(date, englishLocale()), u"3/7/2009 3:04:05 PM");
    EXPECT_EQ(textOf(dateOf(2009, 3, 7, 0, 5), englishLocale()), u"3/7/2009 12:05:00 AM");
    EXPECT_EQ(textOf(dateOf(2009, 3, 7, 12, 5), englishLocale()), u"3/7/2009 12:05:00 PM");
    EXPECT_EQ(textOf(Date{0}, englishLocale()), u"12:00:00 AM");
    Locale initials = englishLocale();
    initials.time = u"h:mm t";
    EXPECT_EQ(textOf(date, initials), u"3/7/2009 3:04 P");
}

TEST(Dates, InText) {
    const std::vector<std::pair<StringView, Date>> cases{
        {u"01.02.2000", dateOf(2000, 2, 1)},
        {u"1.2.00", dateOf(2000, 2, 1)},
        {u"1.2.29", dateOf(2029, 2, 1)},
        {u"1.2.30", dateOf(1930, 2, 1)},
        {u"1/2/2000", dateOf(2000, 2, 1)},
        {u"2000-02-01", dateOf(2000, 2, 1)},
        {u" 29.02.2012 ", dateOf(2012, 2, 29)},
        {u"01.02.2000 13:14:15", dateOf(2000, 2, 1, 13, 14, 15)},
        {u"01.02.2000 13:14", dateOf(2000, 2, 1, 13, 14)},
        {u"01.02.1890 06:00", dateOf(1890, 2, 1, 6)},
        {u"13:14:15", dateOf(1899, 12, 30, 13, 14, 15)},
        {u"1:00", dateOf(1899, 12, 30, 1)},
    };
    for (const auto& [text, date] : cases)
        EXPECT_EQ(dateIn(text, german), date) << toUtf8(text);
    EXPECT_EQ(dateIn(u"2/1/2000 1:30 PM", englishLocale()), dateOf(2000, 2, 1, 13, 30));
    EXPECT_EQ(dateIn(u"12:30 AM", englishLocale()), dateOf(1899, 12, 30, 0, 30));
    Locale yearFirst = german;
    yearFirst.shortDate = u"yyyy-MM-dd";
    EXPECT_EQ(dateIn(u"24-03-07", yearFirst), dateOf(2024, 3, 7))
        << "the locale's order where no year of four digits is first";
}

TEST(Dates, NotInText) {
    for (const StringView text : {u"",
                                  u"abc",
                                  u"30.02.2000",
                                  u"29.02.2011",
                                  u"1.13.2000",
                                  u"0.1.2000",
                                  u"1.2.",
                                  u"257.01.2024",
                                  u"1.257.2024",
                                  u"4294967297.1.2024",
                                  u"1.2",
                                  u"01.02.2000x",
                                  u"01.02.2000 25:00",
                                  u"01.02.2000 12:60",
                                  u"01.02.2000 12",
                                  u"12:00:61",
                                  u"13:00 PM",
                                  u"1.2.99999",
                                  u"12345",
                                  u"1.2.3.4",
                                  u"1.2.x"})
        EXPECT_EQ(dateIn(text, german), std::nullopt) << toUtf8(text);
    EXPECT_EQ(dateIn(u"13:00 PM", englishLocale()), std::nullopt);
    EXPECT_EQ(dateIn(u"0:30 PM", englishLocale()), std::nullopt);
    EXPECT_EQ(dateIn(u"1:30 XM", englishLocale()), std::nullopt);
}

TEST(Dates, TheShortFormLeavesTheTimeOut) {
    EXPECT_EQ(shortDateOf(dateOf(2020, 2, 29, 12, 30), german), u"29.02.2020");
    EXPECT_EQ(shortDateOf(dateOf(1890, 2, 1, 6), german), u"01.02.1890");
    EXPECT_EQ(errorOf([] { shortDateOf(Date{2958466}, german); }), 6);
}

TEST(Dates, AQuotationThatDoesNotEndGoesToThePatternsEnd) {
    Locale locale = german;
    locale.shortDate = u"d.'M";
    EXPECT_EQ(shortDateOf(dateOf(2020, 2, 29), locale), u"29.M");
}

TEST(Calendar, KnowsOnlyDaysThatThereAre) {
    EXPECT_EQ(dayIfAny(2024, 2, 29), dateOf(2024, 2, 29));
    EXPECT_EQ(dayIfAny(9999, 12, 31), dateOf(9999, 12, 31));
    for (const auto& [year, month, day] : std::vector<std::array<int, 3>>{{-1, 1, 1},
                                                                          {10000, 1, 1},
                                                                          {2023, 2, 29},
                                                                          {2024, 0, 1},
                                                                          {2024, 13, 1},
                                                                          {2024, 257, 1},
                                                                          {2024, -1, 1},
                                                                          {2024, 1, 0},
                                                                          {2024, 1, 32},
                                                                          {2024, 1, 257},
                                                                          {2024, 1, -1}})
        EXPECT_EQ(dayIfAny(year, month, day), std::nullopt) << year << " " << month << " " << day;
}

} // namespace
