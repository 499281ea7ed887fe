// What a date on the command line means, and what is none.
#include "cli/option_values.h"

#include "catalog/usage_error.h"

#include <gmock/gmock.h>

namespace kvtdruck::cli {
namespace {

std::string told(const std::string& text) {
    const auto date = dateIn(text);
    return std::to_string(date.year) + "-" + std::to_string(date.month) + "-" + std::to_string(date.day) + " " +
           std::to_string(date.hour) + ":" + std::to_string(date.minute) + ":" + std::to_string(date.second);
}

TEST(OptionValues, DatesAreGermanOrIsoWithOrWithoutATime) {
    EXPECT_EQ(told("31.12.2024"), "2024-12-31 0:0:0");
    EXPECT_EQ(told("1.2.2024"), "2024-2-1 0:0:0");
    EXPECT_EQ(told("29.02.2024 8:15"), "2024-2-29 8:15:0");
    EXPECT_EQ(told("2024-12-31"), "2024-12-31 0:0:0");
    EXPECT_EQ(told("2024-12-31T08:15:59"), "2024-12-31 8:15:59");
    EXPECT_EQ(told("31.12.2024 23:59:59Z"), "2024-12-31 23:59:59");
}

TEST(OptionValues, ATimeMayTellItsZone) {
    EXPECT_EQ(dateIn("2024-12-31 08:15Z").utcOffset, 0);
    EXPECT_EQ(dateIn("2024-12-31 08:15+01:00").utcOffset, 60);
    EXPECT_EQ(dateIn("2024-12-31 08:15-0330").utcOffset, -210);
    EXPECT_EQ(dateIn("2024-12-31 08:15+14:59").utcOffset, 14 * 60 + 59);
    EXPECT_TRUE(dateIn("2024-12-31").utcOffset.has_value()) << "the zone here";
}

TEST(OptionValues, WhatIsNoDateIsRefused) {
    for (const std::string text : {"",
                                   "x",
                                   "31.2.2024",
                                   "0.1.2024",
                                   "1.13.2024",
                                   "31.12.24",
                                   "31.12.20244",
                                   "24-12-31",
                                   "2024-1-1",
                                   "2024.12.31",
                                   "31-12-2024",
                                   "31.12.2024 ",
                                   "31.12.2024T",
                                   "31.12.2024 8",
                                   "31.12.2024 8:1",
                                   "31.12.2024 24:00",
                                   "31.12.2024 08:60",
                                   "31.12.2024 08:15:",
                                   "31.12.2024 08:15:60",
                                   "2024-12-31Z",
                                   "2024-12-31 08:15 Z",
                                   "2024-12-31 08:15+15:00",
                                   "2024-12-31 08:15+01:60",
                                   "2024-12-31 08:15+1:00",
                                   "2024-12-31 08:15+",
                                   "+1.1.2024",
                                   "1.-1.2024"})
        EXPECT_THROW(dateIn(text), catalog::UsageError) << text;
    EXPECT_THROW(dateIn(std::string(100'000, '1')), catalog::UsageError);
}

} // namespace
} // namespace kvtdruck::cli
