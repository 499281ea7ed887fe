#include "druckwerk/layout/layout_generator.h"
#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include "druckwerk/layout/layout_generator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::Not;

class PagingTest : public ::testing::Test {
  protected:
    void layout(const std::string& svg) { writeFile(folder / "Liste.svg", svg); }

    void begin(const ReportDriver::Values& fields) {
        report.variables({{"Jahr", "2010"}});
        report.fields(fields);
        ASSERT_EQ(report.start(folder / "Liste"), 0) << (report.errors.empty() ? "" : report.errors[0].message);
        ASSERT_EQ(report.page(), 0);
    }

    void finish() {
        ASSERT_EQ(report.end(), 0);
        check(pdf);
    }

    std::string text(int number) { return textOf(pdf, number); }

    TemporaryFolder folder;
    std::filesystem::path pdf = folder / "out.pdf";
    ReportDriver report{pdf};
};

TEST_F(PagingTest, LinesFillPagesAndTheCallerTurnsThem) {
    layout(list(field(5, 20, 60, "Wert {{Nr}}")));
    begin({{"Nr", "1"}});
    for (int i = 1; i <= 15; ++i) {
        report.fields({{"Nr", std::to_string(i)}});
        ASSERT_EQ(report.line(), 0);
    }
    finish();
    EXPECT_EQ(report.turns, 2);
    EXPECT_EQ(pagesOf(pdf), 3);
    EXPECT_THAT(text(1), HasSubstr("Wert 7"));
    EXPECT_THAT(text(1), Not(HasSubstr("Wert 8")));
    EXPECT_THAT(text(2), HasSubstr("Wert 8"));
    EXPECT_THAT(text(2), HasSubstr("Spalte"));
    EXPECT_THAT(text(3), HasSubstr("Wert 15"));
    EXPECT_THAT(text(1), HasSubstr("Seite 1 von 3"));
    EXPECT_THAT(text(3), HasSubstr("Seite 3 von 3"));
}

TEST_F(PagingTest, AFullPagePrintsNothingAndAnswersAgain) {
    layout(list(field(5, 20, 60, "Wert {{Nr}}")));
    begin({{"Nr", "x"}});
    for (int i = 1; i <= 7; ++i)
        ASSERT_EQ(report.call(Operation::LlPrintFields), 0);
    report.fields({{"Nr", "zuviel"}});
    EXPECT_EQ(report.call(Operation::LlPrintFields), kEnginePageFull);
    EXPECT_EQ(report.call(Operation::LlPrintFields), kEnginePageFull);
    finish();
    EXPECT_THAT(textOf(pdf), Not(HasSubstr("zuviel")));
}

TEST_F(PagingTest, OnAPageWithoutLinesALineIsAlwaysPrinted) {
    layout(page(layer("Zeile", 20, 200, field(5, 20, 60, "Riese {{Nr}}"))));
    begin({{"Nr", "1"}});
    EXPECT_EQ(report.line(), 0);
    EXPECT_EQ(report.turns, 0);
    EXPECT_EQ(report.line(), 0);
    EXPECT_EQ(report.turns, 1);
    finish();
    EXPECT_EQ(pagesOf(pdf), 2);
    EXPECT_THAT(report.warnings, ::testing::Contains(HasSubstr("höher als die Seite")));
    EXPECT_EQ(report.warnings.size(), 1U) << "once for each job";
}

TEST_F(PagingTest, LinesStandOneBelowTheOther) {
    layout(list(field(5, 20, 60, "Wert{{Nr}}")));
    begin({{"Nr", "1"}});
    for (int i = 1; i <= 3; ++i) {
        report.fields({{"Nr", std::to_string(i)}});
        report.line();
    }
    finish();
    const std::string boxes = boxesOf(pdf);
    const double step = 10 * 72 / 25.4;
    const double first = boxOf(boxes, "Wert1", "yMin");
    EXPECT_NEAR(boxOf(boxes, "Wert2", "yMin") - first, step, 0.1);
    EXPECT_NEAR(boxOf(boxes, "Wert3", "yMin") - first, 2 * step, 0.1);
    EXPECT_NEAR(boxOf(boxes, "Wert1", "xMin"), 5 * 72 / 25.4, 0.1);
}

TEST_F(PagingTest, ThePageHeadShowsTheValuesOfThePagesFirstLine) {
    layout(list(field(5, 20, 60, "{{Nr}}"), "", "data-new-page='Seitenwechsel = 2'"));
    begin({{"Nr", "a"}, {"Seitenwechsel", "1"}});
    report.line();
    report.variables({{"Jahr", "2011"}});
    report.fields({{"Seitenwechsel", "2"}});
    EXPECT_EQ(report.line(), 0);
    EXPECT_EQ(report.turns, 1);
    finish();
    EXPECT_THAT(text(1), HasSubstr("Kopf 2010"));
    EXPECT_THAT(text(2), HasSubstr("Kopf 2011"));
}

TEST_F(PagingTest, ARequestedPageBreakCostsNoEmptyPage) {
    layout(list(field(5, 20, 60, "{{Nr}}"), "", "data-new-page='Seitenwechsel = 2'"));
    begin({{"Nr", "a"}, {"Seitenwechsel", "2"}});
    report.line();
    report.page();
    report.line();
    finish();
    EXPECT_EQ(report.turns, 0);
    EXPECT_EQ(pagesOf(pdf), 2);
}

TEST_F(PagingTest, APageWithoutLinesShowsTheValuesThatItBeganWith) {
    layout(list(field(5, 20, 60, "{{Nr}}")));
    begin({{"Nr", "a"}});
    report.variables({{"Jahr", "2011"}}); // the next page's value, defined before the page is turned
    report.page();
    report.line();
    finish();
    EXPECT_THAT(text(1), HasSubstr("Kopf 2010"));
    EXPECT_THAT(text(1), Not(HasSubstr("Spalte"))) << "column heads only above lines";
    EXPECT_THAT(text(2), HasSubstr("Kopf 2011"));
}

TEST_F(PagingTest, OneRecordAPageOnASheetWithoutLines) {
    layout(page(layer("Seitenkopf", 0, 90, field(5, 2, 60, "Umsatz {{Jahr}}: {{Betrag|#.##0,00}}"))));
    begin({{"Betrag", "1234,5"}});
    for (int year = 2010; year < 2013; ++year) {
        if (year > 2010)
            report.page();
        report.variables({{"Jahr", std::to_string(year)}});
        report.fields({{"Betrag", std::to_string(year) + ",5"}});
        ASSERT_EQ(report.line(), 0);
    }
    finish();
    EXPECT_EQ(report.turns, 0);
    EXPECT_EQ(pagesOf(pdf), 3);
    EXPECT_THAT(text(2), HasSubstr("Umsatz 2011: 2.011,50"));
}

class GroupTest : public PagingTest {
  protected:
    /// Group heads and feet of 5 mm, lines of 10 mm, a sum of 5 mm; the lines have 70 mm.
    static std::string grouped(const std::string& headAttributes = "", const std::string& more = "") {
        return page(layer("Kopf", 10, 5, field(5, 10, 60, "Spalte")) +
                    layer("Gruppenkopf Jahr", 20, 5, field(5, 20, 60, "Beginn {{FJahr}}"),
                          "data-on='FJahr' " + headAttributes) +
                    layer("Zeile", 25, 10,
                          field(5, 25, 30, "Konto {{Nr}}") + field(40, 25, 30, "{{Ist|#.##0,00}}", "", true)) +
                    layer("Gruppenfuß Jahr", 40, 5,
                          field(5, 40, 60, "Ende {{FJahr}}: {{=sum(Ist)|#.##0,00}} in {{=count()}}"),
                          "data-on='FJahr'") +
                    more + layer("Summe", 50, 5, field(5, 50, 60, "Gesamt {{=sum(Ist)|#.##0,00}}")) +
                    layer("Seitenfuß", 90, 10, field(5, 92, 90, "Seitensumme {{=sum(Ist)|#.##0,00}}")));
    }

    void record(int year, int number) {
        report.fields({{"FJahr", std::to_string(year)},
                       {"Nr", std::to_string(number)},
                       {"Ist", std::to_string(number * 1000) + ",5"}});
    }

    void print(int year, int number) {
        record(year, number);
        ASSERT_EQ(report.line(), 0);
    }
};

TEST_F(GroupTest, HeadsFeetAndSums) {
    layout(grouped());
    record(2010, 1);
    begin({});
    print(2010, 1);
    print(2010, 2);
    print(2011, 3);
    finish();
    ASSERT_EQ(pagesOf(pdf), 1);
    const std::string all = text(1);
    std::size_t at = 0;
    for (const char* expected :
         {"Spalte", "Beginn 2010", "Konto 1", "1.000,50", "Konto 2", "2.000,50", "Ende 2010: 3.001,00 in 2",
          "Beginn 2011", "Konto 3", "Ende 2011: 3.000,50 in 1", "Gesamt 6.001,50", "Seitensumme 6.001,50"}) {
        at = all.find(expected, at);
        EXPECT_NE(at, std::string::npos) << expected << " in " << all;
    }
}

TEST_F(GroupTest, AHeadNeverStandsWithoutItsFirstLineNorAFootWithoutItsLast) {
    // Whatever the numbers of lines in two groups: each head has a line below it, each foot and sum one above it.
    for (int first = 1; first <= 9; ++first) {
        TemporaryFolder own;
        ReportDriver driver(own / "out.pdf");
        writeFile(own / "Liste.svg", grouped());
        const auto print = [&](int year, int number) {
            driver.fields({{"FJahr", std::to_string(year)}, {"Nr", std::to_string(number)}, {"Ist", "1"}});
            ASSERT_EQ(driver.line(), 0);
        };
        driver.fields({{"FJahr", "2010"}, {"Nr", "1"}, {"Ist", "1"}});
        ASSERT_EQ(driver.start(own / "Liste"), 0);
        driver.page();
        for (int i = 1; i <= first; ++i)
            print(2010, i);
        for (int i = 1; i <= 8; ++i)
            print(2011, 100 + i);
        ASSERT_EQ(driver.end(), 0);
        const int pages = pagesOf(own / "out.pdf");
        for (int i = 1; i <= pages; ++i) {
            const std::string shown = textOf(own / "out.pdf", i);
            EXPECT_THAT(shown, HasSubstr("Konto")) << "page " << i << " of " << first;
            const auto head = shown.rfind("Beginn");
            if (head != std::string::npos) {
                EXPECT_NE(shown.find("Konto", head), std::string::npos) << shown;
            }
            const auto foot = shown.find("Ende");
            if (foot != std::string::npos) {
                EXPECT_NE(shown.rfind("Konto", foot), std::string::npos) << shown;
            }
        }
        EXPECT_THAT(textOf(own / "out.pdf"),
                    HasSubstr("Ende 2010: " + std::to_string(first) + ",00 in " + std::to_string(first)));
        EXPECT_THAT(textOf(own / "out.pdf"), HasSubstr("Gesamt " + std::to_string(first + 8) + ",00"));
    }
}

TEST_F(GroupTest, AGroupCanBeginANewPage) {
    layout(grouped("data-new-page='1'"));
    record(2010, 1);
    begin({});
    print(2010, 1);
    print(2011, 2);
    finish();
    EXPECT_EQ(report.turns, 1);
    EXPECT_THAT(text(1), HasSubstr("Ende 2010"));
    EXPECT_THAT(text(1), Not(HasSubstr("2011")));
    EXPECT_THAT(text(2), HasSubstr("Beginn 2011"));
    EXPECT_THAT(text(1), HasSubstr("Seitensumme 1.000,50"));
    EXPECT_THAT(text(2), HasSubstr("Seitensumme 2.000,50"));
}

TEST_F(GroupTest, ACallerThatTurnsThePageItselfGetsTheFootOnTheOldOne) {
    layout(grouped());
    record(2010, 1);
    begin({});
    print(2010, 1);
    record(2011, 2); // defined first, then the page, then the line
    report.page();
    ASSERT_EQ(report.line(), 0);
    finish();
    EXPECT_THAT(text(1), HasSubstr("Ende 2010: 1.000,50 in 1"));
    EXPECT_THAT(text(2), Not(HasSubstr("Ende 2010")));
    EXPECT_THAT(text(2), HasSubstr("Beginn 2011"));
}

TEST_F(GroupTest, CarriedForwardWhereAPageIsFullWithinAGroup) {
    const std::string carried = layer("Vortrag", 60, 5, field(5, 60, 60, "Vortrag {{=sum(Ist)|#.##0,00}}")) +
                                layer("Übertrag", 65, 5, field(5, 65, 60, "Übertrag {{=sum(Ist)|#.##0,00}}"));
    layout(grouped("", carried));
    record(2010, 1);
    begin({});
    for (int i = 1; i <= 8; ++i)
        print(2010, i);
    print(2011, 9);
    finish();
    EXPECT_EQ(pagesOf(pdf), 2);
    EXPECT_THAT(text(1), HasSubstr("Übertrag 15.002,50")); // 1 to 5
    EXPECT_THAT(text(2), HasSubstr("Vortrag 15.002,50"));
    EXPECT_LT(text(2).find("Vortrag"), text(2).find("Konto 6"));
    EXPECT_THAT(text(2), Not(HasSubstr("Übertrag")));
    EXPECT_THAT(text(2), HasSubstr("Ende 2010: 36.004,00 in 8"));
}

TEST_F(GroupTest, HeadsAreRepeatedWhereTheLayoutSaysSo) {
    layout(grouped("data-repeat='1'"));
    record(2010, 1);
    begin({});
    for (int i = 1; i <= 8; ++i)
        print(2010, i);
    finish();
    ASSERT_EQ(pagesOf(pdf), 2);
    EXPECT_THAT(text(2), HasSubstr("Beginn 2010"));
}

TEST_F(GroupTest, NestedGroupsCloseFromTheInside) {
    layout(page(layer("Gruppenkopf Jahr", 10, 5, field(5, 10, 60, "Jahr {{J}}"), "data-on='J'") +
                layer("Gruppenkopf Name", 15, 5, field(5, 15, 60, "Name {{N}}"), "data-on='N,P'") +
                layer("Zeile", 20, 5, field(5, 20, 60, "Zeile {{Nr}}")) +
                layer("Gruppenfuß Name", 30, 5, field(5, 30, 60, "-{{N}} {{=count()}}"), "data-on='N,P'") +
                layer("Gruppenfuß Jahr", 40, 5, field(5, 40, 60, "-{{J}} {{=count()}}"), "data-on='J'")));
    begin({{"J", "1"}, {"N", "a"}, {"P", "x"}, {"Nr", "1"}});
    report.line();
    report.fields({{"P", "y"}, {"Nr", "2"}});
    report.line();
    report.fields({{"J", "2"}, {"Nr", "3"}});
    report.line();
    finish();
    std::string flat;
    for (const char c : rawTextOf(pdf))
        flat += c == '\n' ? '|' : c;
    EXPECT_THAT(flat,
                HasSubstr("Jahr 1|Name a|Zeile 1|-a 1|Name a|Zeile 2|-a 1|-1 2|Jahr 2|Name a|Zeile 3|-a 1|-2 1"));
}

TEST_F(PagingTest, ConditionsHideBandsAndElements) {
    layout(list(field(5, 20, 20, "A{{Nr}}", "data-if='Nr &lt;&gt; 2'") + field(30, 20, 20, "B{{Nr}}"), "",
                "data-if='Nr &lt;&gt; 3'"));
    begin({{"Nr", "1"}});
    for (int i = 1; i <= 4; ++i) {
        report.fields({{"Nr", std::to_string(i)}});
        ASSERT_EQ(report.line(), 0);
    }
    finish();
    const std::string all = textOf(pdf);
    EXPECT_THAT(all, HasSubstr("A1"));
    EXPECT_THAT(all, Not(HasSubstr("A2")));
    EXPECT_THAT(all, HasSubstr("B2"));
    EXPECT_THAT(all, Not(HasSubstr("B3")));
    EXPECT_THAT(all, HasSubstr("A4"));
}

// How many of 20 lines stand on the first page, where a sum as tall as two and a half of them may follow.
class ReserveTest : public PagingTest {
  protected:
    int linesOnFirstPage(const char* sumAttributes) {
        layout(list(field(5, 20, 20, "Konto {{Nr}}"),
                    layer("Summe", 60, 24, "<text x='5' y='65'>Am Ende</text>", sumAttributes)));
        begin({{"Nr", "1"}});
        for (int i = 1; i <= 20; ++i) {
            report.fields({{"Nr", std::to_string(i)}});
            report.line();
        }
        finish();
        const std::string first = text(1);
        EXPECT_THAT(textOf(pdf), HasSubstr("Konto 20"));
        int lines = 0;
        for (auto at = first.find("Konto"); at != std::string::npos; at = first.find("Konto", at + 1))
            ++lines;
        return lines;
    }
};

TEST_F(ReserveTest, LinesLeaveRoomForASum) {
    EXPECT_EQ(linesOnFirstPage(""), 4);
}

TEST_F(ReserveTest, ASumThatWillNotPrintTakesNoRoom) {
    EXPECT_EQ(linesOnFirstPage("data-if='Nr &gt; 1000'"), 7);
}

TEST_F(ReserveTest, ASumThatMayStandAloneTakesNoRoom) {
    EXPECT_EQ(linesOnFirstPage("data-alone='1'"), 7);
    EXPECT_THAT(textOf(pdf), HasSubstr("Am Ende"));
}

TEST_F(PagingTest, LinesMayStandOnTheBottomOfTheirField) {
    layout(list("<g class='field' data-fit='wrap' data-align='bottom'><rect x='5' y='20' width='22' height='9'/>"
                "<text x='5' y='28'>{{T}}</text></g>" +
                field(60, 24.5, 30, "N")));
    begin({{"T", "eins zwei drei vier"}});
    report.line();
    report.fields({{"T", "kurz"}});
    report.line();
    finish();
    const std::string boxes = boxesOf(pdf);
    EXPECT_LT(boxOf(boxes, "eins", "yMin"), boxOf(boxes, "vier", "yMin"));
    EXPECT_NEAR(boxOf(boxes, "vier", "yMin"), boxOf(boxes, "N", "yMin"), 0.1);
}

TEST_F(PagingTest, RowsGrowAndPushWhatFollows) {
    layout(list(field(5, 20, 30, "{{T}}", "data-fit='wrap' data-grow='1'") + field(60, 20, 30, "N{{Nr}}")));
    begin({{"T", "eins zwei drei vier fünf sechs sieben acht neun zehn elf zwölf dreizehn vierzehn fünfzehn Ende"},
           {"Nr", "1"}});
    report.line();
    report.fields({{"T", "kurz"}, {"Nr", "2"}});
    report.line();
    finish();
    const std::string boxes = boxesOf(pdf);
    EXPECT_GT(boxOf(boxes, "Ende", "yMin"), boxOf(boxes, "eins", "yMin") + 2 * 3 * 72 / 25.4);
    EXPECT_GT(boxOf(boxes, "N2", "yMin"), boxOf(boxes, "Ende", "yMax"));
}

TEST_F(PagingTest, TenThousandPages) {
    layout(list(field(5, 20, 60, "{{Nr}}"), "", "data-new-page='1'"));
    begin({{"Nr", "1"}});
    for (int i = 1; i <= 10000; ++i) {
        report.fields({{"Nr", std::to_string(i)}});
        ASSERT_EQ(report.line(), 0);
    }
    ASSERT_EQ(report.end(), 0);
    EXPECT_EQ(pagesOf(pdf), 10000);
    EXPECT_THAT(text(9999), HasSubstr("Seite 9999 von 10000"));
}

TEST_F(PagingTest, WithoutALayoutOneIsGenerated) {
    report.variables({{"FnrName1", "Musterbau"}, {"Ueberschrift", "Konten"}, {"Jahr", "2010"}});
    report.fields({{"Konto", "4000"}, {"Text", "Löhne"}, {"Betrag", "1234,5"}});
    ASSERT_EQ(report.start(folder / "Liste"), 0);
    report.page();
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(report.line(), 0);
    finish();
    EXPECT_EQ(report.warnings, std::vector<std::string>());
    EXPECT_THAT(text(1), HasSubstr("Musterbau"));
    EXPECT_THAT(text(1), HasSubstr("Löhne"));
    EXPECT_THAT(text(1), HasSubstr("1.234,50"));
    EXPECT_GT(pagesOf(pdf), 1);
}

TEST_F(PagingTest, GeneratedLayoutsHoldAnyNumberOfFields) {
    for (const int count : {0, 1, 8, 20, 120}) {
        std::vector<Definition> definitions = {{"FnrName1", "x", false, false}, {"Firmennummer", "1", true, false}};
        for (int i = 0; i < count; ++i)
            definitions.push_back({"Feld" + std::to_string(i), "1", i % 2 == 0, true});
        writeFile(folder / "erzeugt.svg", generateLayout(definitions));
        for (const auto& finding : checkLayout(folder / "erzeugt.svg", definitions))
            ADD_FAILURE() << count << ": " << finding.message;
    }
}

} // namespace
} // namespace kvtdruck::druckwerk
