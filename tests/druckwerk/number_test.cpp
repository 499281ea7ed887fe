#include "druckwerk/common/fault.h"
#include "druckwerk/expression/date_pattern.h"
#include "druckwerk/expression/number_pattern.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

std::string formatted(StringView number, StringView pattern) {
    String out;
    NumberPattern(pattern).append(Number::parse(number), out);
    return toUtf8(out);
}

std::string formattedDate(StringView date, StringView pattern) {
    String out;
    DatePattern(pattern).append(date, out);
    return toUtf8(out);
}

TEST(Number, ReadsGermanText) {
    EXPECT_EQ(Number::parse(u"1234,5").value, 1234.5);
    EXPECT_EQ(Number::parse(u"-0,25").value, -0.25);
    EXPECT_EQ(Number::parse(u"1.234.567,89").value, 1234567.89);
    EXPECT_EQ(Number::parse(u"1.234").value, 1234);
    EXPECT_EQ(Number::parse(u"1.5").value, 1.5);
    EXPECT_EQ(Number::parse(u"1E+15").value, 1e15);
    EXPECT_EQ(Number::parse(u"1,5E-07").value, 1.5e-7);
    EXPECT_EQ(Number::parse(u" 7 ").value, 7);
    EXPECT_EQ(Number::parse(u"+7").value, 7);
}

TEST(Number, TellsMissingFromWrong) {
    EXPECT_EQ(Number::parse(u"").kind, Number::Kind::Missing);
    for (const StringView text :
         {u"abc", u"-", u",5x", u"1,2,3", u"-1,#IND", u"1,#QNAN", u"1,#INF", u"12 34", u"1E", u"５"})
        EXPECT_EQ(Number::parse(text).kind, Number::Kind::None) << toUtf8(text);
}

TEST(Number, KeepsDigitsOfComputedValues) {
    const Number third = Number::of(1.0 / 3);
    EXPECT_EQ(third.kind, Number::Kind::Exact);
    EXPECT_EQ(third.digits, 333333333333333);
    EXPECT_EQ(third.scale, 15);
    EXPECT_EQ(Number::of(1e300).kind, Number::Kind::Large);
    EXPECT_EQ(Number::of(std::nan("")).kind, Number::Kind::None);
    EXPECT_EQ(Number::of(HUGE_VAL).kind, Number::Kind::None);
    EXPECT_EQ(Number::of(1e-300).digits, 0);
}

TEST(NumberPattern, GroupsAndDecimals) {
    EXPECT_EQ(formatted(u"1234567,5", u"#.##0,00"), "1.234.567,50");
    EXPECT_EQ(formatted(u"0", u"#.##0,00"), "0,00");
    EXPECT_EQ(formatted(u"0,5", u"#,00"), ",50");
    EXPECT_EQ(formatted(u"7", u"000"), "007");
    EXPECT_EQ(formatted(u"1067", u"00000"), "01067");
    EXPECT_EQ(formatted(u"1,25", u"0,0##"), "1,25");
    EXPECT_EQ(formatted(u"1", u"0,0##"), "1,0");
    EXPECT_EQ(formatted(u"2010", u"0"), "2010");
}

TEST(NumberPattern, RoundsTheDecimalDigitsHalvesAwayFromZero) {
    EXPECT_EQ(formatted(u"1,005", u"0,00"), "1,01");
    EXPECT_EQ(formatted(u"2,675", u"0,00"), "2,68");
    EXPECT_EQ(formatted(u"-1,005", u"0,00"), "-1,01");
    EXPECT_EQ(formatted(u"0,5", u"0"), "1");
    EXPECT_EQ(formatted(u"999,995", u"#.##0,00"), "1.000,00");
}

TEST(NumberPattern, NothingThatRoundsToZeroHasASign) {
    EXPECT_EQ(formatted(u"-0,001", u"0,00"), "0,00");
    EXPECT_EQ(formatted(u"-0,001", u"+0,00;-0,00;±0"), "±0");
}

TEST(NumberPattern, PartsForNegativeAndZero) {
    EXPECT_EQ(formatted(u"5", u"+0,0;-0,0;0,0"), "+5,0");
    EXPECT_EQ(formatted(u"-5", u"+0,0;-0,0;0,0"), "-5,0");
    EXPECT_EQ(formatted(u"0", u"#.##0,00;;"), "");
    EXPECT_EQ(formatted(u"-3", u"#.##0,00;;"), "");
    EXPECT_EQ(formatted(u"-3", u"0;(0)"), "(3)");
    EXPECT_EQ(formatted(u"0", u"0;-0;–"), "–");
}

TEST(NumberPattern, PercentAndLiterals) {
    EXPECT_EQ(formatted(u"0,125", u"0,0 %"), "12,5 %");
    EXPECT_EQ(formatted(u"3", u"0 %"), "300 %");
    EXPECT_EQ(formatted(u"3", u"0 \"%\""), "3 %");
    EXPECT_EQ(formatted(u"3", u"0 \\%"), "3 %");
    EXPECT_EQ(formatted(u"3,5", u"\"Summe: \"0,00 €"), "Summe: 3,50 €");
}

TEST(NumberPattern, LargeNumbersKeepTheirSize) {
    EXPECT_EQ(formatted(u"1E+18", u"#.##0"), "1.000.000.000.000.000.000");
    EXPECT_EQ(formatted(u"-1E+20", u"0,0"), "-100000000000000000000,0");
    EXPECT_EQ(formatted(u"1E-20", u"0,00"), "0,00");
}

TEST(NumberPattern, EveryAmountInCentsReadsAsItWasMeant) {
    for (int cents = -150000; cents <= 150000; cents += 7) {
        const int whole = std::abs(cents) / 100;
        std::string expected = std::to_string(whole);
        if (expected.size() > 3)
            expected.insert(expected.size() - 3, ".");
        const int rest = std::abs(cents) % 100;
        expected.insert(0, cents < 0 ? "-" : "").append(rest < 10 ? ",0" : ",").append(std::to_string(rest));
        String out;
        NumberPattern(u"#.##0,00").append(Number::of(cents / 100.0), out);
        ASSERT_EQ(toUtf8(out), expected);
    }
}

TEST(NumberPattern, RefusesWithReason) {
    for (const StringView pattern :
         {u"abc", u"0,0,0", u"0;0;0;0", u"0#", u"0,#0", u"0 0", u"\"0", u"0,0.0", u"0,0000000000000000"}) {
        try {
            const NumberPattern refused(pattern);
            FAIL() << toUtf8(pattern);
        } catch (const Fault& fault) {
            EXPECT_NE(std::string(fault.what()).find("Ungültiges Zahlenformat „" + toUtf8(pattern)),
                      std::string::npos);
        }
    }
}

TEST(DatePattern, ShowsPartsOfADate) {
    EXPECT_EQ(formattedDate(u"07.03.2024", u"dd.MM.yyyy"), "07.03.2024");
    EXPECT_EQ(formattedDate(u"07.03.2024", u"d. MMMM yyyy"), "7. März 2024");
    EXPECT_EQ(formattedDate(u"07.03.2024", u"dddd, d.M.yy"), "Donnerstag, 7.3.24");
    EXPECT_EQ(formattedDate(u"07.03.2024", u"ddd MMM"), "Do Mär");
    EXPECT_EQ(formattedDate(u"07.03.2024 08:05:09", u"HH:mm:ss \"Uhr\""), "08:05:09 Uhr");
    EXPECT_EQ(formattedDate(u"29.02.2000", u"dddd"), "Dienstag");
}

TEST(DatePattern, NamesTheMonthOfANumber) {
    EXPECT_EQ(formattedDate(u"3", u"MMMM"), "März");
    EXPECT_EQ(formattedDate(u"12", u"MMM"), "Dez");
    EXPECT_EQ(formattedDate(u"07.03.2024", u"MMMM"), "März");
    for (const StringView text : {u"0", u"13", u"1,5", u"-1"})
        EXPECT_EQ(formattedDate(text, u"MMMM"), toUtf8(text));
    EXPECT_EQ(formattedDate(u"3", u"d. MMMM"), "3");
}

TEST(DatePattern, LeavesAloneWhatIsNoDate) {
    for (const StringView text :
         {u"", u"unbekannt", u"31.13.2024", u"00:00:00", u"1.2", u"1.2.3.4.5.6.7", u"99999.1.1"})
        EXPECT_EQ(formattedDate(text, u"dd.MM.yyyy"), toUtf8(text));
}

TEST(DatePattern, IsToldFromNumbers) {
    EXPECT_TRUE(DatePattern::describes(u"dd.MM.yyyy"));
    EXPECT_FALSE(DatePattern::describes(u"#.##0,00"));
    EXPECT_FALSE(DatePattern::describes(u"0 \"Mitarbeiter\""));
}

} // namespace
} // namespace kvtdruck::druckwerk
