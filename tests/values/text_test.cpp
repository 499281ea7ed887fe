#include "values/text.h"

#include "values/characters.h"
#include "values/code_points.h"
#include "values/letters.h"
#include "values/locale.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

using namespace kvtdruck;

namespace {

TEST(Text, Utf8OfEveryLength) {
    EXPECT_EQ(toUtf8(u"aÄ€"), "a\xC3\x84\xE2\x82\xAC");
    EXPECT_EQ(toUtf8(u"\U0001F600"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(toUtf8(u""), "");
    EXPECT_EQ(toUtf8(StringView(u"a\0b", 3)), std::string("a\0b", 3));
}

TEST(Text, EveryUnitComesBackFromUtf8) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const String text{u'<', static_cast<char16_t>(unit), u'>'};
        ASSERT_EQ(fromUtf8(toUtf8(text)), text) << unit;
    }
}

TEST(Text, CodePointsBeyondTheFirstPlaneComeBack) {
    for (const String& text : {String(u"\U00010000"), String(u"\U0001F600x"), String(u"\U0010FFFF")})
        EXPECT_EQ(fromUtf8(toUtf8(text)), text);
}

TEST(Text, UnpairedSurrogatesKeepTheirPlace) {
    const String reversed{u'\xDC00', u'\xD800', u'a', u'\xD800'};
    EXPECT_EQ(toUtf8(StringView(&reversed[0], 1)), "\xED\xB0\x80");
    EXPECT_EQ(fromUtf8(toUtf8(reversed)), reversed);
}

TEST(Text, MalformedBytesBecomeReplacements) {
    const std::vector<std::pair<std::string, String>> cases{
        {"\x80", u"\uFFFD"},                               // continuation alone
        {"a\xC3", u"a\uFFFD"},                             // cut off
        {"\xC3z", u"\uFFFDz"},                             // continuation missing
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                     // overlong "/"
        {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},           // overlong "/"
        {"\xF0\x80\x80\xAF", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // overlong "/"
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // beyond U+10FFFF
        {"\xF5", u"\uFFFD"},                               // no lead byte
        {"\xFF\xFE", u"\uFFFD\uFFFD"},                     // no lead bytes
        {"\xE2\x82"
         "x",
         u"\uFFFD\uFFFDx"}, // cut off in the middle
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(fromUtf8(bytes), text) << testing::PrintToString(bytes);
}

TEST(Text, TrimsBlanksOnly) {
    EXPECT_EQ(trimmed(u"  a b  "), u"a b");
    EXPECT_EQ(trimmed(u"\ta\n"), u"\ta\n");
    EXPECT_EQ(trimmed(u"\u00A0a\u00A0"), u"\u00A0a\u00A0");
    EXPECT_EQ(trimmed(u"   "), u"");
    EXPECT_EQ(trimmed(u""), u"");
}

TEST(Text, RemovesEveryOccurrence) {
    EXPECT_EQ(without(u"01.02.2010 10:20:30", u"."), u"01022010 10:20:30");
    EXPECT_EQ(without(u"::a::", u":"), u"a");
    EXPECT_EQ(without(u"aaa", u"aa"), u"a");
    EXPECT_EQ(without(u"abab", u"ab"), u"");
    EXPECT_EQ(without(u"aabb", u"ab"), u"ab");
    EXPECT_EQ(without(u"", u"."), u"");
    EXPECT_EQ(without(u"a.b", u""), u"a.b");
}

TEST(Text, Decimal) {
    EXPECT_EQ(decimal(0), u"0");
    EXPECT_EQ(decimal(-7), u"-7");
    EXPECT_EQ(decimal(std::numeric_limits<long long>::min()), u"-9223372036854775808");
    EXPECT_EQ(decimal(std::numeric_limits<long long>::max()), u"9223372036854775807");
}

TEST(Characters, BlanksAndDigitsByTheirBounds) {
    for (const char16_t blank : u" \t\n\v\f\r\u00A0\u2000\u200A\u202F\u3000")
        EXPECT_EQ(isBlank(blank), blank != 0) << static_cast<unsigned>(blank);
    for (const char16_t other : u"\b\x0E\u009F\u1FFF\u200B\u2030\u3001")
        EXPECT_FALSE(isBlank(other)) << static_cast<unsigned>(other);
    for (unsigned unit = 0; unit < 0x80; ++unit)
        EXPECT_EQ(isDigit(static_cast<char16_t>(unit)), unit >= '0' && unit <= '9');
}

TEST(Characters, LettersAToZAreTheSameInBothCases) {
    EXPECT_TRUE(sameWord(u"@AZ[az{", u"@az[AZ{"));
    EXPECT_FALSE(sameWord(u"Ä", u"ä"));
    EXPECT_FALSE(sameWord(u"@", u"`"));
    EXPECT_FALSE(sameWord(u"Wahr", u"Wah"));
    EXPECT_FALSE(sameWord(u"Wah", u"Wahr"));
    EXPECT_TRUE(sameWord(u"", u""));
}

TEST(Characters, PairsOfSurrogatesStayTogetherAndHalvesAreReplaced) {
    const String text{u'a', u'\xD83D', u'\xDE00', u'\xD83D', u'\xFFE5', u'\xDE00'};
    EXPECT_EQ(wholeCharacters(text, 0), 0U);
    EXPECT_EQ(wholeCharacters(text, 1), 1U);
    EXPECT_EQ(wholeCharacters(text, 2), 1U) << "not between the halves of a pair";
    EXPECT_EQ(wholeCharacters(text, 3), 3U);
    EXPECT_EQ(wholeCharacters(text, 4), 4U) << "a half without its other";
    EXPECT_EQ(wholeCharacters(text, 6), 6U);
    EXPECT_EQ(wellFormed(text), u"a\U0001F600\uFFFD\uFFE5\uFFFD");
    EXPECT_EQ(wellFormed(String{u'\xD83D'}), u"\uFFFD");
}

TEST(Letters, DistanceOfWordsIsTheNumberOfChangesInAnyCase) {
    EXPECT_EQ(editDistance("Umsatz", "umsatz"), 0U);
    EXPECT_EQ(editDistance("Umsatz", "Umsaz"), 1U);
    EXPECT_EQ(editDistance("Umsatz", "Umsatze"), 1U);
    EXPECT_EQ(editDistance("Umsatz", "Unsatz"), 1U);
    EXPECT_EQ(editDistance("", "Bilanz"), 6U);
    EXPECT_EQ(editDistance("MaKost", "MaZeit"), 3U);
    EXPECT_EQ(asciiLower("@AZ[ÄÖ"), "@az[ÄÖ");
}

TEST(Locales, WordsOfTruthFollowTheLanguage) {
    const auto words = [](std::string_view language) {
        Locale locale;
        setTruthWords(locale, language);
        return std::pair(locale.trueText, locale.falseText);
    };
    EXPECT_EQ(words("de"), std::pair(String(u"Wahr"), String(u"Falsch")));
    EXPECT_EQ(words("fr-CH"), std::pair(String(u"Vrai"), String(u"Faux")));
    EXPECT_EQ(words("it_IT.UTF-8"), std::pair(String(u"Vero"), String(u"Falso")));
    EXPECT_EQ(words("den"), std::pair(String(u"True"), String(u"False")));
    EXPECT_EQ(words(""), std::pair(String(u"True"), String(u"False")));
}

} // namespace
