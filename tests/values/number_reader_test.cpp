// Text as number.
#include "values/conversion.h"

#include "values/expected.h"
#include "values/printers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <vector>

using namespace kvtdruck;

namespace {

struct Reading {
    StringView text;
    std::optional<double> number;
};

void expectAll(const std::vector<Reading>& cases, const Locale& locale) {
    for (const auto& [text, number] : cases)
        EXPECT_EQ(numberIn(text, locale), number) << toUtf8(text);
}

TEST(NumberInText, German) {
    expectAll({{u"0", 0.0},
               {u"00", 0.0},
               {u"42", 42.0},
               {u"007", 7.0},
               {u"1234,5", 1234.5},
               {u"1.234,5", 1234.5},
               {u"1234.5", 12345.0}, // the point separates thousands, wherever it stands
               {u"0.5", 5.0},
               {u",5", 0.5},
               {u"5,", 5.0},
               {u"0,0005", 0.0005},
               {u"-1", -1.0},
               {u"1-", -1.0},
               {u"+1", 1.0},
               {u"1+", 1.0},
               {u"- 1", -1.0},
               {u" \t12 \r\n", 12.0},
               {u"\u00A012\u00A0", 12.0},
               {u"(5)", -5.0},
               {u"( 5 )", -5.0},
               {u"(-5)", -5.0},
               {u"€5", 5.0},
               {u"-€5,50", -5.5},
               {u"€ -5", -5.0},
               {u"12,50 €", 12.5},
               {u"1E3", 1000.0},
               {u"1e3", 1000.0},
               {u"1,5E+3", 1500.0},
               {u"1,5E-03", 0.0015},
               {u"1E+0000000003", 1000.0},
               {u"1E3-", -1000.0},
               {u"&HFF", 255.0},
               {u"&hff", 255.0},
               {u"&O17", 15.0},
               {u"&o17", 15.0},
               {u" &H10 ", 16.0},
               {u"&HFFFFFFFFFFFFFFFF", 18446744073709551615.0}},
              germanLocale());
}

TEST(NumberInText, English) {
    expectAll({{u"1,234.5", 1234.5},
               {u"1234,5", 12345.0},
               {u"$1,000", 1000.0},
               {u"($1,000.50)", -1000.5},
               {u"1.5E2", 150.0},
               {u"€5", std::nullopt}},
              englishLocale());
}

TEST(NumberInText, NoNumber) {
    for (const StringView text :
         {u"",     u" ",     u"abc",  u"1a",  u"a1",   u"1 2", u"1,2,3", u".",  u",",   u"-",
          u"--1",  u"++1",   u"-1-",  u"(5",  u"5)",   u"()",  u"E3",    u"1E", u"1E+", u"1E-",
          u"1Ex",  u"1E3,5", u"&H",   u"&HG", u"&H1G", u"&O8", u"&",     u"€",  u"€€5", u"€5€",
          u"Wahr", u"1D3",   u"0x10", u"inf", u"nan",  u"1٫5", u"１"})
        EXPECT_EQ(numberIn(text, germanLocale()), std::nullopt) << toUtf8(text);
    EXPECT_EQ(numberIn(StringView(u"1\0", 2), germanLocale()), std::nullopt);
    EXPECT_EQ(numberIn(u"&H1\u0131", germanLocale()), std::nullopt);
}

TEST(NumberInText, TooLargeIsInfinityAndTooSmallIsZero) {
    expectAll({{u"1E309", infinity},
               {u"-1E309", -infinity},
               {u"1E999999999999", infinity},
               {u"&H10000000000000000", infinity},
               {u"1,7976931348623157E308", std::numeric_limits<double>::max()},
               {u"1E-400", 0.0},
               {u"1E-999999999999", 0.0},
               {u"0E999999999", 0.0},
               {u"4,9E-324", std::numeric_limits<double>::denorm_min()}},
              germanLocale());
    EXPECT_EQ(numberIn(String(400, u'9'), germanLocale()), infinity);
    EXPECT_EQ(numberIn(u"0," + String(400, u'0') + u"1E401", germanLocale()), 1.0);
}

TEST(NumberInText, NoBreakBlanksBetweenThousandsMayBeTypedAsBlanks) {
    Locale french;
    french.thousandsSeparator = u"\u202F";
    expectAll({{u"1\u202F234,5", 1234.5},
               {u"1 234,5", 1234.5},
               {u"1\u00A0234", 1234.0},
               {u"12 ", 12.0},
               {u"1 a", std::nullopt}},
              french);
}

TEST(NumberInText, WithoutThousandsSeparator) {
    Locale plain;
    plain.thousandsSeparator = u"";
    expectAll({{u"1234,5", 1234.5}, {u"1.234", std::nullopt}}, plain);
}

TEST(NumberInText, FifteenDigitsComeBack) {
    std::mt19937_64 random(2);
    for (int count = 0; count < 100000; ++count) {
        const auto number = std::bit_cast<double>(random());
        if (!std::isfinite(number))
            continue;
        const String text = textOf(number, germanLocale());
        const auto back = numberIn(text, germanLocale());
        ASSERT_TRUE(back) << toUtf8(text);
        ASSERT_EQ(textOf(*back, germanLocale()), text);
    }
}

} // namespace
