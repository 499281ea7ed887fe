#include "druckwerk/common/xml_text.h"
#include "druckwerk/page/addresses.h"
#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr double kMillimetre = 72 / 25.4;

class TextTest : public ::testing::Test {
  protected:
    /// Prints `value` as field "T" of a sheet with the content given.
    void print(const std::string& content, const std::string& value, const std::string& style = "") {
        writeFile(folder / "Blatt.svg", page(layer("Seitenkopf", 0, 90, content), style));
        report.variables({{"T", value}});
        ASSERT_EQ(report.start(folder / "Blatt"), 0) << (report.errors.empty() ? "" : report.errors[0].message);
        ASSERT_EQ(report.page(), 0);
        ASSERT_EQ(report.line(), 0);
        ASSERT_EQ(report.end(), 0);
        check(pdf);
    }
    std::string boxes() { return boxesOf(pdf); }

    TemporaryFolder folder;
    std::filesystem::path pdf = folder / "out.pdf";
    ReportDriver report{pdf};
};

TEST_F(TextTest, KeepsToItsSide) {
    print(field(10, 10, 30, "links") + field(10, 20, 30, "rechts", "", true) +
              "<g class='field'><rect x='10' y='30' width='30' height='5'/><text x='25' y='33' "
              "text-anchor='middle'>mitte</text></g>",
          "");
    const std::string found = boxes();
    EXPECT_NEAR(boxOf(found, "links", "xMin"), 10 * kMillimetre, 0.05);
    EXPECT_NEAR(boxOf(found, "rechts", "xMax"), 40 * kMillimetre, 0.05);
    EXPECT_NEAR(boxOf(found, "mitte", "xMin") + boxOf(found, "mitte", "xMax"), 50 * kMillimetre, 0.1);
}

TEST_F(TextTest, NumbersOfOnePatternStandUnderEachOther) {
    print(field(10, 10, 30, "{{=1234,5|#.##0,00}}", "", true) + field(10, 20, 30, "{{=-7|#.##0,00}}", "", true),
          "");
    EXPECT_NEAR(boxOf(boxes(), "1.234,50", "xMax"), boxOf(boxes(), "-7,00", "xMax"), 0.01);
}

TEST_F(TextTest, LongTextIsCutWithAnEllipsis) {
    print(field(10, 10, 30, "{{T}}"), std::string(200, 'W') + "Ende");
    const std::string text = textOf(pdf);
    EXPECT_THAT(text, HasSubstr("WWW"));
    EXPECT_THAT(text, HasSubstr("…"));
    EXPECT_THAT(text, Not(HasSubstr("Ende")));
    const std::string found = boxes();
    EXPECT_LE(std::stod(found.substr(found.find("xMax=\"") + 6)), 40 * kMillimetre + 0.05);
}

TEST_F(TextTest, TextThatJustFitsIsNotCut) {
    print(field(10, 10, 30, "{{T}}"), "Löhne und Gehälter");
    EXPECT_THAT(textOf(pdf), HasSubstr("Löhne und Gehälter"));
}

TEST_F(TextTest, ShrinksBeforeItIsCut) {
    print(field(10, 10, 20, "{{T}}", "data-fit='shrink'"), "Bezeichnung, die nicht passt");
    EXPECT_THAT(textOf(pdf), HasSubstr("Bezeichnung, die nicht passt"));
    EXPECT_LE(boxOf(boxes(), "passt", "xMax"), 30 * kMillimetre + 0.05);
}

TEST_F(TextTest, NumbersAreNeverCutSilently) {
    print(field(10, 10, 8, "{{T|#.##0,00}}", "", true) + field(10, 20, 12, "{{T|#.##0,00}}", "", true),
          "123456789012,25");
    const std::string text = textOf(pdf);
    EXPECT_THAT(text, HasSubstr("####"));
    EXPECT_THAT(text, Not(HasSubstr("…")));
    EXPECT_THAT(report.warnings, Contains(HasSubstr("Blatt.svg, Zeile 2, Ebene „Seitenkopf“, <g>: Zahl "
                                                    "„123.456.789.012,25“ passt nicht in das Feld")));
}

TEST_F(TextTest, WrapsAtBlanksAndHyphensAndCutsWhatIsTooMuch) {
    print(field(10, 10, 30, "{{T}}", "data-fit='wrap'", false, 12),
          "Dampfschifffahrts-Gesellschaft und noch sehr viel mehr Wörter, als in drei Zeilen gehen können Ende");
    const std::string text = rawTextOf(pdf);
    EXPECT_THAT(text, HasSubstr("Dampfschifffahrts-\n"));
    EXPECT_THAT(text, HasSubstr("…"));
    EXPECT_THAT(text, Not(HasSubstr("Ende")));
}

TEST_F(TextTest, WordsLongerThanALineAreBroken) {
    print(field(10, 10, 20, "{{T}}", "data-fit='wrap'", false, 40), std::string(60, 'x') + "Ende");
    std::string joined;
    for (const char c : rawTextOf(pdf))
        joined += c == '\n' ? "" : std::string(1, c);
    EXPECT_THAT(joined, HasSubstr(std::string(60, 'x') + "Ende"));
}

TEST_F(TextTest, LineEndsInAValueBreakWrappedTextOnly) {
    print(field(10, 10, 40, "{{T}}", "data-fit='wrap'", false, 20) + field(10, 40, 40, "{{T}}"), "oben\r\nunten");
    EXPECT_GT(boxOf(boxes(), "unten", "yMin", 1), boxOf(boxes(), "oben", "yMax", 1) - 1);
    EXPECT_NEAR(boxOf(boxes(), "unten", "yMin", 2), boxOf(boxes(), "oben", "yMin", 2), 0.01);
}

TEST_F(TextTest, AMegabyteInAFieldIsNoTrouble) {
    print(field(10, 10, 40, "{{T}}") + field(10, 20, 40, "{{T}}", "data-fit='shrink'") +
              field(10, 30, 40, "{{T}}", "data-fit='wrap'", false, 40),
          std::string(1 << 20, 'm'));
    EXPECT_THAT(textOf(pdf), HasSubstr("mmm"));
}

TEST_F(TextTest, UmlautsQuotesAndNoBreakSpacesComeBackAsTheyWere) {
    print(field(10, 10, 80, "{{T}}"), "ÄÖÜäöüß „Anführung“ – 5\u00a0% – 10\u202f€ ½ ² Ω");
    EXPECT_THAT(rawTextOf(pdf),
                HasSubstr("ÄÖÜäöüß „Anführung“ – 5 % – 10 € ½ ² Ω")); // its own blanks for all blanks
    const std::string unpacked = outputOf("qpdf --qdf '" + pdf.string() + "' -");
    EXPECT_THAT(unpacked, HasSubstr("<00A0>"));
    EXPECT_THAT(unpacked, HasSubstr("<202F>"));
    EXPECT_THAT(report.warnings, IsEmpty());
}

TEST_F(TextTest, WhatHasNoShapeIsNotShownAndSeparatorsAreBlanks) {
    print(field(10, 10, 80, "{{T}}"), "a\u2028b\u2029c\x7F"
                                      "d|Wort\u00ADteil|x\u200By|\uFEFFz|\u2060k|v\uFE0F|w\u202A|e\u0301");
    const auto text = rawTextOf(pdf);
    EXPECT_THAT(text, HasSubstr("a b c d|"));
    for (const char* shown : {"teil|x", "y|", "z|", "k|v", "|w"})
        EXPECT_THAT(text, HasSubstr(shown));
    EXPECT_THAT(report.warnings, IsEmpty());
}

TEST_F(TextTest, ParenthesesAndBackslashesSurvive) {
    const std::string value = "a(b)c\\d)e((f";
    print(field(10, 10, 80, "{{T}}"), value);
    EXPECT_THAT(rawTextOf(pdf), HasSubstr(value));
}

TEST_F(TextTest, RightToLeftTextRunsFromTheRight) {
    print(field(10, 10, 80, "{{T}}"), "שלום עולם 12");
    const std::string found = boxes();
    const double first = boxOf(found, "םולש", "xMin"); // poppler's boxes list letters from left to right
    const double second = boxOf(found, "םלוע", "xMin");
    ASSERT_GE(first, 0) << found;
    ASSERT_GE(second, 0) << found;
    EXPECT_GT(first, second);
    EXPECT_THAT(rawTextOf(pdf), HasSubstr("שלום"));
}

TEST_F(TextTest, ArabicIsJoined) {
    print(field(10, 10, 80, "{{T}}"), "مرحبا");
    EXPECT_THAT(rawTextOf(pdf), HasSubstr("مرحبا"));
    EXPECT_THAT(report.warnings, Contains(HasSubstr("Zeichen, die der Schrift fehlen")));
}

TEST_F(TextTest, EmojiArePicturesWithTheirText) {
    print(field(10, 10, 80, "{{T}}"), "gut 👍 fertig");
    EXPECT_THAT(rawTextOf(pdf), HasSubstr("gut 👍 fertig"));
    EXPECT_THAT(outputOf("pdfimages -list '" + pdf.string() + "'"), HasSubstr("image"));
}

TEST_F(TextTest, CharactersThatNoFontHasAreReported) {
    print(field(10, 10, 80, "{{T}}"), "x\U000F1234y");
    EXPECT_THAT(report.warnings, Contains(HasSubstr("Zeichen U+F1234 fehlt in allen Schriften")));
    EXPECT_THAT(rawTextOf(pdf), HasSubstr("x"));
}

TEST_F(TextTest, UnpairedSurrogatesAreShownAsReplacementCharacters) {
    writeFile(folder / "Blatt.svg", page(layer("Seitenkopf", 0, 90, field(10, 10, 80, "{{T}}"))));
    const char16_t lone[] = {u'a', char16_t{0xD800}, u'b', 0};
    report.call(Operation::LlDefineVariableExt, {StringView(u"T"), StringView(lone), kTypeText});
    ASSERT_EQ(report.start(folder / "Blatt"), 0);
    report.page();
    report.line();
    ASSERT_EQ(report.end(), 0);
    EXPECT_THAT(rawTextOf(pdf), HasSubstr("a\uFFFDb"));
}

TEST_F(TextTest, MissingFontsAreSubstitutedAndReportedOnce) {
    print("<text x='5' y='20' style=\"font-family:'Gibt Es Nicht'\">eins</text>"
          "<text x='5' y='30' style=\"font-family:'Gibt Es Nicht'\">zwei</text>",
          "");
    ASSERT_EQ(report.warnings.size(), 1U);
    EXPECT_THAT(report.warnings[0], HasSubstr("Schrift „Gibt Es Nicht“ ist nicht installiert"));
    EXPECT_THAT(textOf(pdf), HasSubstr("zwei"));
}

TEST_F(TextTest, FontsAreEmbeddedAsSubsets) {
    print(field(10, 10, 80, "{{T}}") + "<text x='5' y='40' class='fett'>fett</text>", "normal",
          ".fett { font-weight: bold }");
    const std::string fonts = outputOf("pdffonts '" + pdf.string() + "'");
    EXPECT_THAT(fonts, HasSubstr("+LiberationSans "));
    EXPECT_THAT(fonts, HasSubstr("+LiberationSans-Bold "));
    EXPECT_THAT(fonts, Not(HasSubstr(" no  no")));
    EXPECT_LT(std::filesystem::file_size(pdf), 20000U);
}

TEST_F(TextTest, TurnedArtworkTextIsText) {
    print("<text transform='rotate(-90 20 50)' x='20' y='50'>hochkant</text>", "");
    const std::string found = boxes();
    EXPECT_GT(boxOf(found, "hochkant", "yMax") - boxOf(found, "hochkant", "yMin"),
              boxOf(found, "hochkant", "xMax") - boxOf(found, "hochkant", "xMin"));
    EXPECT_LE(boxOf(found, "hochkant", "yMax"), 50 * kMillimetre + 1);
}

TEST_F(TextTest, TheNumberOfPagesKeepsToTheSideOfItsText) {
    writeFile(folder / "Liste.svg", list(field(5, 20, 60, "{{T}}"), "", "data-new-page='1'"));
    report.variables({{"Jahr", "1"}, {"T", "x"}});
    ASSERT_EQ(report.start(folder / "Liste"), 0);
    report.page();
    for (int i = 0; i < 12; ++i)
        report.line();
    ASSERT_EQ(report.end(), 0);
    check(pdf);
    EXPECT_NEAR(boxOf(boxes(), "12", "xMax"), 95 * kMillimetre, 0.05);
    EXPECT_THAT(textOf(pdf, 3), HasSubstr("Seite 3 von 12"));
}

TEST(Addresses, LeadWhereTheyAreShownToLead) {
    const auto uris = [](StringView text) {
        std::string all;
        for (const Address& address : addressesIn(text)) {
            const auto shown = toUtf8(text.substr(address.begin, address.end - address.begin));
            all += (all.empty() ? "" : " ") + address.uri;
            EXPECT_TRUE(address.uri.ends_with(shown)) << address.uri << " for " << shown;
        }
        return all;
    };
    EXPECT_EQ(uris(u"Siehe www.beispiel.de, oder (HTTPS://a-b.Example.com/x?y=1#z)."),
              "http://www.beispiel.de HTTPS://a-b.Example.com/x?y=1#z");
    EXPECT_EQ(uris(u"vor.name+x_1-2@firma.example: ja"), "mailto:vor.name+x_1-2@firma.example");
    EXPECT_EQ(uris(u"http://firma.example:8080/a http://firma.example?x"),
              "http://firma.example:8080/a http://firma.example?x");
    EXPECT_EQ(uris(u"www.beispiel.de\u00A0und"), "http://www.beispiel.de");
    for (const StringView none :
         {u"1.234,5", u"z.B. und", u"www.", u"www.x", u"www..de", u"www.bei_spiel.de", u"www.beispiel.d3",
          u"http://de", u"http://.de", u"http://a..de", u"http://a.d", u"www.müller.de", u"www.beispiel.deü",
          u"a@b", u"a@b.1c", u"a!b@firma.de", u"a(b)@firma.de", u"@firma.de", u"ohne Punkt"})
        EXPECT_EQ(uris(none), "") << toUtf8(none);
}

TEST(XmlText, HoldsWhatXmlCanHold) {
    EXPECT_EQ(xmlText(u"a<b> & \t\n\r\u0001\uFFFE\uFFFF"), "a&lt;b&gt; &amp; \t\n&#13;\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(xmlText(String{u'x', u'\xD83D'}), "x\uFFFD");
}

} // namespace
} // namespace kvtdruck::druckwerk
