#include "druckwerk/common/fault.h"
#include "druckwerk/expression/date_pattern.h"
#include "druckwerk/expression/number_pattern.h"
#include "platform/posix/posix_platform.h"
#include "values/conversion.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

Number parsed(StringView text) {
    return Number::parse(text, germanLocale());
}

std::string formatted(StringView number, StringView pattern) {
    String out;
    NumberPattern(pattern).append(parsed(number), germanLocale(), out);
    return toUtf8(out);
}

std::string formattedDate(Date date, StringView pattern, const Locale& locale = germanLocale()) {
    String out;
    DatePattern(pattern).append(date, locale, out);
    return toUtf8(out);
}

TEST(Number, ReadsGermanText) {
    EXPECT_EQ(parsed(u"1234,5").value, 1234.5);
    EXPECT_EQ(parsed(u"-0,25").value, -0.25);
    EXPECT_EQ(parsed(u"1.234.567,89").value, 1234567.89);
    EXPECT_EQ(parsed(u"1.234").value, 1234);
    EXPECT_EQ(parsed(u"1E+15").value, 1e15);
    EXPECT_EQ(parsed(u"1,5E-07").value, 1.5e-7);
    EXPECT_EQ(parsed(u" 7 ").value, 7);
    EXPECT_EQ(parsed(u"+7").value, 7);
    EXPECT_EQ(parsed(u"1,5e3").value, 1500);
    EXPECT_EQ(parsed(u"15e-1").value, 1.5);
    EXPECT_EQ(parsed(u"-1.234,5").digits, -12345);
    EXPECT_EQ(parsed(u"-1.234,5").scale, 1);
    for (const StringView none : {u"1E+400", u"1E", u"1e-", u"1,", u",5", u"-", u"1234.567"})
        EXPECT_EQ(parsed(none).kind, Number::Kind::None) << toUtf8(none);
}

TEST(Number, ReadsTheOneNotationThatItIsTold) {
    const Locale swiss = localeByName("de-CH");
    const Locale english = localeByName("en-US");
    const Locale french = localeByName("fr-FR");
    EXPECT_EQ(Number::parse(u"12.345", swiss).value, 12.345);
    EXPECT_EQ(Number::parse(u"0.125", english).value, 0.125);
    EXPECT_EQ(Number::parse(u"12,345", english).value, 12345);
    EXPECT_EQ(Number::parse(u"1’234.5", swiss).value, 1234.5);
    EXPECT_EQ(Number::parse(u"1\u202F234,5", french).value, 1234.5);
    EXPECT_EQ(Number::parse(u"1.5E+20", english).value, 1.5e20);
    EXPECT_EQ(Number::parse(u"1··5", Locale{.decimalSign = u"··"}).value, 1.5);
    EXPECT_EQ(Number::parse(u"15", Locale{.decimalSign = u""}).value, 15);
    for (const auto& [text, locale] : {std::pair(StringView(u"12,345"), swiss),
                                       {u"1,5", english},
                                       {u"1.5", french},
                                       {u"1.5", germanLocale()},
                                       {u"1,234,5", english}})
        EXPECT_EQ(Number::parse(text, locale).kind, Number::Kind::None) << toUtf8(text);
}

TEST(Number, EveryNumberOfTheComponentComesBackAsItWas) {
    for (const char* name : {"de-DE", "de-AT", "de-CH", "en-US", "fr-FR"}) {
        const Locale locale = localeByName(name);
        for (const double value : {0.0, 0.1, -1234.5, 1e-5, 1.5e-300, 999999999999999.0, 1e15, -1.7e307, 1.0 / 3}) {
            const String text = textOf(value, locale);
            const Number read = Number::parse(text, locale);
            ASSERT_TRUE(read.isNumber()) << name << ": " << toUtf8(text);
            EXPECT_EQ(textOf(read.value, locale), text);
            EXPECT_EQ(read.value, *numberIn(text, locale)) << name << ": " << toUtf8(text);
        }
    }
}

TEST(Number, ManyDigitsDoNotOverflow) {
    EXPECT_EQ(parsed(u"9999999999999999999").value, 1e19);
    EXPECT_EQ(parsed(u"-9999999999999999999").value, -1e19);
    EXPECT_EQ(parsed(u"123456789012345678").digits, 123456789012345678);
    EXPECT_EQ(parsed(u"12345678901234567,8").value, 12345678901234567.8);
    EXPECT_EQ(parsed(u"12345678901234567890123456789,5").value, 12345678901234567890123456789.5);
}

TEST(Number, TellsMissingFromWrong) {
    EXPECT_EQ(parsed(u"").kind, Number::Kind::Missing);
    for (const StringView text :
         {u"abc",  u"-",         u",5x",      u"1,2,3",  u"-1,#IND", u"1,#QNAN", u"1,#INF", u"12 34", u"1E", u"５",
          u"1.23", u"12.34.567", u"1234.567", u"1.2345", u"1E+400",  u"&H10",    u"(5)",    u"5 €",   u"1,", u".5"})
        EXPECT_EQ(parsed(text).kind, Number::Kind::None) << toUtf8(text);
}

TEST(Number, KeepsDigitsOfComputedValues) {
    const Number third = Number::of(1.0 / 3);
    EXPECT_EQ(third.kind, Number::Kind::Exact);
    EXPECT_EQ(third.digits, 333333333333333);
    EXPECT_EQ(third.scale, 15);
    EXPECT_EQ(Number::of(-1.0 / 3).digits, -333333333333333);
    EXPECT_EQ(Number::of(123456789012345.6).digits, 123456789012346);
    EXPECT_EQ(Number::of(123456789012345.6).scale, 0);
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
    EXPECT_EQ(formatted(u"3", u"Nr. 0"), "Nr. 3");
    EXPECT_EQ(formatted(u"3", u"0 Std."), "3 Std.");
    EXPECT_EQ(formatted(u"3", u"0 \"a;\\b\""), "3 a;\\b");
    EXPECT_EQ(formatted(u"3", u"0\\"), "3\\");
    EXPECT_EQ(formatted(u"0", u"0,0 %"), "0,0 %");
}

TEST(NumberPattern, LargeNumbersKeepTheirSize) {
    EXPECT_EQ(formatted(u"1E+18", u"#.##0"), "1.000.000.000.000.000.000");
    EXPECT_EQ(formatted(u"-1E+20", u"0,0"), "-100000000000000000000,0");
    EXPECT_EQ(formatted(u"1E-20", u"0,00"), "0,00");
    EXPECT_EQ(formatted(u"1E+15", u"0,0 %"), "100000000000000000,0 %");
    EXPECT_EQ(formatted(u"1E+18", u"0,0##"), "1000000000000000000,0");
    EXPECT_EQ(formatted(u"-1E+18", u"0;(0)"), "(1000000000000000000)");
    EXPECT_EQ(formatted(u"-1E+18", u"0;minus"), "minus");
    EXPECT_EQ(formatted(u"1,7E+307", u"0 %").size(), std::string("17").size() + 308 + 2);
    EXPECT_EQ(formatted(u"1,7E+307", u"0 %").substr(0, 15), "169999999999999");
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
        NumberPattern(u"#.##0,00").append(Number::of(cents / 100.0), germanLocale(), out);
        ASSERT_EQ(toUtf8(out), expected);
    }
}

TEST(NumberPattern, PrintsTheSignsOfTheLocale) {
    const auto printed = [](const char* locale) {
        String out;
        NumberPattern(u"#.##0,00").append(Number::of(-1234567.5), localeByName(locale), out);
        return toUtf8(out);
    };
    EXPECT_EQ(printed("de-DE"), "-1.234.567,50");
    EXPECT_EQ(printed("de-AT"), "-1\u00A0234\u00A0567,50");
    EXPECT_EQ(printed("de-CH"), "-1’234’567.50");
    EXPECT_EQ(printed("en-US"), "-1,234,567.50");
    EXPECT_EQ(printed("fr-FR"), "-1\u202F234\u202F567,50");
}

TEST(NumberPattern, RefusesWithReason) {
    for (const StringView pattern : {u"abc", u"0,0,0", u"0;0;0;0", u"0#", u"0,#0", u"0 0", u"\"0", u"0,0.0",
                                     u"0,0000000000000000", u"0000000000000000"}) {
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
    const Date date = dateOf(2024, 3, 7, 8, 5, 9);
    EXPECT_EQ(formattedDate(date, u"dd.MM.yyyy"), "07.03.2024");
    EXPECT_EQ(formattedDate(date, u"d. MMMM yyyy"), "7. März 2024");
    EXPECT_EQ(formattedDate(date, u"dddd, d.M.yy"), "Donnerstag, 7.3.24");
    EXPECT_EQ(formattedDate(date, u"ddd MMM"), "Do Mär");
    EXPECT_EQ(formattedDate(date, u"HH:mm:ss \"Uhr\""), "08:05:09 Uhr");
    EXPECT_EQ(formattedDate(date, u"{d. 'den' M}[@MM@]"), "{7. den 3}[@03@]");
    EXPECT_EQ(formattedDate(dateOf(2000, 2, 29), u"dddd"), "Dienstag");
    EXPECT_EQ(formattedDate(dateOf(1899, 12, 31), u"dddd"), "Sonntag");
}

TEST(DatePattern, KnowsTheGermanLetters) {
    const Date date = dateOf(2024, 3, 7, 8, 5, 9);
    EXPECT_EQ(formattedDate(date, u"TT.MM.JJJJ"), "07.03.2024");
    EXPECT_EQ(formattedDate(date, u"T.M.JJ"), "7.3.24");
    EXPECT_EQ(formattedDate(date, u"TTTT, T. MMMM JJJJ"), "Donnerstag, 7. März 2024");
    EXPECT_EQ(formattedDate(date, u"hh:mm:ss"), "08:05:09");
}

TEST(DatePattern, ADateOfNumbersHasTheOrderOfTheLocale) {
    const Date date = dateOf(2024, 3, 7, 8, 5, 9);
    const auto printed = [&](StringView pattern, const char* locale) {
        return formattedDate(date, pattern, localeByName(locale));
    };
    EXPECT_EQ(printed(u"TT.MM.JJJJ", "en-US"), "03/07/2024");
    EXPECT_EQ(printed(u"T.M.JJ", "en-US"), "3/7/24");
    EXPECT_EQ(printed(u"MM.JJJJ", "en-US"), "03/2024");
    EXPECT_EQ(printed(u"TT.MM.JJJJ", "fr-FR"), "07/03/2024");
    EXPECT_EQ(printed(u"TT.MM.", "fr-FR"), "07/03");
    EXPECT_EQ(printed(u"TT.MM.JJJJ", "de-CH"), "07.03.2024");
    EXPECT_EQ(printed(u"TT.MM.", "de-AT"), "07.03.");
    EXPECT_EQ(printed(u"T. MMMM JJJJ", "en-US"), "7. März 2024");
    EXPECT_EQ(printed(u"JJJJ-MM-TT", "en-US"), "2024-03-07");
    EXPECT_EQ(formattedDate(date, u"TT.MM.JJJJ", Locale{.shortDate = u"MMddyyyy"}), "03072024");
}

TEST(DatePattern, RefusesWithReason) {
    for (const StringView pattern :
         {u"tt.MM.JJJJ", u"dd.MM.yyy", u"ddddd", u"MM/YYYY", u"TT.MM.JJJJ Uhr", u"T. \"von", u"HHH", u"TT ö"}) {
        try {
            const DatePattern refused(pattern);
            FAIL() << toUtf8(pattern);
        } catch (const Fault& fault) {
            EXPECT_NE(std::string(fault.what()).find("Ungültiges Datumsformat „" + toUtf8(pattern)),
                      std::string::npos);
        }
    }
}

TEST(DatePattern, IsToldFromNumbers) {
    EXPECT_TRUE(DatePattern::describes(u"dd.MM.yyyy"));
    EXPECT_TRUE(DatePattern::describes(u"TT.JJJJ"));
    EXPECT_FALSE(DatePattern::describes(u"#.##0,00"));
    EXPECT_FALSE(DatePattern::describes(u"0 \"Mitarbeiter\""));
    EXPECT_FALSE(DatePattern::describes(u"\"Tage\""));
    EXPECT_TRUE(DatePattern::describes(u"\"Stand 10: \"TT.MM."));
}

} // namespace
} // namespace kvtdruck::druckwerk
