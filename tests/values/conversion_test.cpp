// Numbers as text.
#include "values/conversion.h"

#include "values/expected.h"
#include "values/printers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace kvtdruck;

namespace {

template <class Number>
struct Case {
    Number number;
    StringView text;
};

TEST(DoubleAsText, Table) {
    const std::vector<Case<double>> cases{
        {0, u"0"},
        {-0.0, u"0"},
        {1, u"1"},
        {-1, u"-1"},
        {1234.5, u"1234,5"},
        {-1234.5, u"-1234,5"},
        {0.5, u"0,5"},
        {-0.5, u"-0,5"},
        {0.1, u"0,1"},
        {0.1 + 0.2, u"0,3"},
        {1.0 / 3, u"0,333333333333333"},
        {2.0 / 3, u"0,666666666666667"},
        {1.0 / 12, u"0,0833333333333333"},
        {100, u"100"},
        {1200, u"1200"},
        {1e14, u"100000000000000"},
        {123456789012345, u"123456789012345"},
        {-123456789012345, u"-123456789012345"},
        {12345678901234.5, u"12345678901234,5"},
        {999999999999999, u"999999999999999"},
        // The exponent form begins at 1E+15 …
        {1e15, u"1E+15"},
        {999999999999999.5, u"1E+15"},
        {999999999999999.375, u"999999999999999"},
        // Halves are rounded away from zero.
        {100000000000000.5, u"100000000000001"},
        {-100000000000001.5, u"-100000000000002"},
        {0.5 + 123456789012344, u"123456789012345"},
        {1000000000000005, u"1,00000000000001E+15"},
        {1234567890123456, u"1,23456789012346E+15"},
        {-1.5e300, u"-1,5E+300"},
        {1e100, u"1E+100"},
        {std::numeric_limits<double>::max(), u"1,79769313486232E+308"},
        // … and below 0.0001.
        {0.0001, u"0,0001"},
        {0.00012345, u"0,00012345"},
        {0.000099999999999999999, u"0,0001"},
        {0.0000999999999999999, u"9,99999999999999E-05"},
        {0.00001, u"1E-05"},
        {0.000015, u"1,5E-05"},
        {-0.000015, u"-1,5E-05"},
        {1e-10, u"1E-10"},
        {1e-100, u"1E-100"},
        {std::numeric_limits<double>::min(), u"2,2250738585072E-308"},
        {std::numeric_limits<double>::denorm_min(), u"4,94065645841247E-324"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(textOf(number, german), text) << number;
}

TEST(DoubleAsText, UsesTheLocalesSignWithAndWithoutExponent) {
    EXPECT_EQ(textOf(1234.5, englishLocale()), u"1234.5");
    EXPECT_EQ(textOf(1.5e20, englishLocale()), u"1.5E+20");
    EXPECT_EQ(textOf(1.5e-20, englishLocale()), u"1.5E-20");
    Locale arabic;
    arabic.decimalSign = u"٫";
    EXPECT_EQ(textOf(1.5, arabic), u"1٫5");
}

TEST(DoubleAsText, WhatIsNoNumber) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(textOf(infinity, german), u"1,#INF");
    EXPECT_EQ(textOf(-infinity, german), u"-1,#INF");
    EXPECT_EQ(textOf(std::copysign(nan, 1.0), german), u"1,#QNAN");
    EXPECT_EQ(textOf(std::copysign(nan, -1.0), german), u"-1,#IND");
    EXPECT_EQ(textOf(std::numeric_limits<float>::infinity(), englishLocale()), u"1.#INF");
}

TEST(SingleAsText, Table) {
    const std::vector<Case<float>> cases{
        {0, u"0"},
        {-0.0F, u"0"},
        {2013, u"2013"},
        {12.5F, u"12,5"},
        {0.1F, u"0,1"},
        {1.0F / 3, u"0,3333333"},
        {2.0F / 3, u"0,6666667"},
        {1234567, u"1234567"},
        {9999999, u"9999999"},
        {1e7F, u"1E+07"},
        {12345678, u"1,234568E+07"},
        {-16777216, u"-1,677722E+07"},
        {22993.625F, u"22993,63"},
        {-4194304.5F, u"-4194305"},
        {0.0001F, u"0,0001"},
        {0.00001F, u"1E-05"},
        {std::numeric_limits<float>::max(), u"3,402823E+38"},
        {std::numeric_limits<float>::denorm_min(), u"1,401298E-45"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(textOf(number, german), text) << number;
}

std::string printed(double number, const char* format) {
    char text[100];
    std::snprintf(text, sizeof text, format, number);
    return text;
}

/// The C library's "%.15G" or "%.7G" as an independent witness, with the sign exchanged. It rounds a half to the
/// even digit, Automation away from zero, which is where the half's neighbour goes.
String witness(double number, const char* format, std::size_t digits) {
    const std::string all = printed(std::abs(number), "%.60e");
    const bool half = all[digits + 1] == '5' && all.find_first_not_of('0', digits + 2) == all.find('e');
    std::string text = printed(half ? std::nextafter(number, number * 2) : number, format);
    std::replace(text.begin(), text.end(), '.', ',');
    return fromUtf8(text);
}

TEST(DoubleAsText, AgreesWithTheCLibraryOnRandomNumbers) {
    std::mt19937_64 random(1);
    std::uniform_int_distribution<int> scale(-20, 20);
    std::uniform_real_distribution<double> mantissa(-10, 10);
    for (int count = 0; count < 100000; ++count) {
        const auto anyBits = std::bit_cast<double>(random());
        for (const double number :
             {mantissa(random) * std::pow(10, scale(random)), std::isfinite(anyBits) ? anyBits : 1}) {
            ASSERT_EQ(textOf(number, german), witness(number, "%.15G", 15));
            const auto single = static_cast<float>(number);
            if (std::isfinite(single) && single != 0) {
                ASSERT_EQ(textOf(single, german), witness(static_cast<double>(single), "%.7G", 7));
            }
        }
    }
}

TEST(CurrencyAsText, Table) {
    const std::vector<Case<std::int64_t>> cases{
        {0, u"0"},
        {1, u"0,0001"},
        {-1, u"-0,0001"},
        {10000, u"1"},
        {12500, u"1,25"},
        {1000000, u"100"},
        {-123456, u"-12,3456"},
        {std::numeric_limits<std::int64_t>::max(), u"922337203685477,5807"},
        {std::numeric_limits<std::int64_t>::min(), u"-922337203685477,5808"},
    };
    for (const auto& [units, text] : cases)
        EXPECT_EQ(textOf(Currency{units}, german), text);
    EXPECT_EQ(textOf(Currency{12500}, englishLocale()), u"1.25");
}

TEST(DecimalAsText, Table) {
    const std::uint64_t all64 = std::numeric_limits<std::uint64_t>::max();
    const std::uint32_t all32 = std::numeric_limits<std::uint32_t>::max();
    const std::vector<Case<Decimal>> cases{
        {{0, 0, 0, false}, u"0"},
        {{0, 0, 5, true}, u"0"},
        {{1234567, 0, 3, false}, u"1234,567"},
        {{1500, 0, 3, true}, u"-1,5"},
        {{1, 0, 28, false}, u"0,0000000000000000000000000001"},
        {{all64, all32, 0, false}, u"79228162514264337593543950335"},
        {{all64, all32, 28, true}, u"-7,9228162514264337593543950335"},
        {{0, 1, 0, false}, u"18446744073709551616"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(textOf(number, german), text);
}

} // namespace
