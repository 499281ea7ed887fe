// What an accessible document tells those who do not see it, judged by the level that it says it has.
#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class AccessibleTest : public ::testing::Test {
  protected:
    AccessibleTest() { report.options.level = PdfLevel::Accessible; }

    /// Prints a list with `lines` lines; each has a number and a name.
    void print(const std::string& layout, int lines = 1) {
        writeFile(folder / "Liste.svg", layout);
        report.variables({{"Jahr", "2010"}});
        for (int i = 1; i <= lines; ++i) {
            report.fields({{"Nr", std::to_string(i)}, {"Name", "Name" + std::to_string(i)}});
            if (i == 1) {
                ASSERT_EQ(report.start(folder / "Liste"), 0) << ::testing::PrintToString(report.errors.size());
                report.page();
            }
            report.line();
        }
        ASSERT_EQ(report.end(), 0);
        EXPECT_EQ(levelOf(pdf), "PDF/A-3a, PDF/UA-1");
    }

    /// Texts and boxes (in whole points) of the figures, from left to right.
    std::string figures() const {
        return outputOf("qpdf --json=2 '" + pdf.string() +
                        "' | jq -c '[.qpdf[1][].value? | objects | select(.[\"/S\"] == \"/Figure\") | "
                        "[.[\"/Alt\"][2:], (.[\"/A\"][\"/BBox\"] | map(round))]] | sort_by(.[1])[]'");
    }
    /// What is read out, a line for each element.
    std::string said() const { return outputOf(std::string(KVT_SAID) + " '" + pdf.string() + "' 2>&1"); }

    TemporaryFolder folder;
    std::filesystem::path pdf = folder / "out.pdf";
    ReportDriver report{pdf};
};

constexpr const char* kGradient = "<defs><linearGradient id='v'><stop offset='0' stop-color='#f00'/>"
                                  "<stop offset='1'/></linearGradient><filter id='f'>"
                                  "<feOffset dx='1' dy='2'/></filter></defs>";

/// Besides the drawings there is a table of one line.
std::string withDrawings(const std::string& drawings) {
    return page(kGradient + layer("Seitenkopf", 0, 20, drawings) +
                layer("Kopf", 30, 5, field(5, 30, 40, "Spalte")) +
                layer("Zeile", 40, 10, field(5, 40, 40, "{{Name}}")));
}

TEST_F(AccessibleTest, ADrawingWithATitleIsAFigure) {
    print(withDrawings(
        "<rect x='10' y='5' width='10' height='5' fill='url(#v)'><title> Verlauf von\n Rot </title></rect>"
        "<circle cx='34' cy='8' r='4' fill='blue' filter='url(#f)'><title>Punkt</title></circle>"
        "<g transform='translate(50,2)'><title>Wappen</title><path d='M0 0 h8 v4 h-8 z' fill='green'/>"
        "<path d='M2 4 h4 v4 h-4 z' fill='url(#v)'/></g>"
        "<path d='M70 2 h4 v4 h-4 z' fill='green'><title>Blatt</title></path>"));
    // The filter's own room ends the point on the right and below.
    EXPECT_EQ(figures(), "[\"Verlauf von Rot\",[28,254,57,269]]\n"
                         "[\"Punkt\",[87,246,110,267]]\n"
                         "[\"Wappen\",[141,254,165,278]]\n"
                         "[\"Blatt\",[198,265,210,278]]\n");
}

TEST_F(AccessibleTest, ADrawingWithoutATitleIsAnOrnament) {
    print(withDrawings("<rect width='100%' height='100%' fill='url(#v)'/>"
                       "<rect x='5' y='5' width='10' height='5' fill='url(#v)'><title>  </title></rect>"
                       "<rect x='5' y='5' width='0' height='0' fill='url(#v)'><title>Nichts</title></rect>"));
    EXPECT_EQ(figures(), "");
    EXPECT_THAT(said(), HasSubstr("Name1"));
}

TEST_F(AccessibleTest, ADrawingOfATextSaysIt) {
    print(withDrawings("<text x='10' y='10' letter-spacing='1'>Ent-\n wurf</text>"
                       "<g opacity='0.5'><text x='40' y='10'>Muster</text><text x='40' y='15'>Kopie</text></g>"));
    EXPECT_THAT(figures(), AllOf(HasSubstr("\"Ent- wurf\""), HasSubstr("\"Muster Kopie\"")));
}

TEST_F(AccessibleTest, ATitleAroundTextsLeavesThemTexts) {
    print(withDrawings("<g><title>Kasten</title><rect x='5' y='5' width='20' height='5' fill='url(#v)'/>"
                       "<text x='6' y='9'>Hinweis</text></g>"));
    EXPECT_EQ(figures(), "");
    EXPECT_THAT(said(), HasSubstr("Hinweis"));
}

TEST_F(AccessibleTest, APictureThatComesOnALaterPageIsSaidThere) {
    print(list(field(5, 20, 40, "{{Name}}"),
               kGradient + layer("Hintergrund", 0, 5,
                                 "<g data-if='Nr > 7'><rect x='5' y='5' width='10' height='5' fill='url(#v)'>"
                                 "<title>Folgeseite</title></rect></g>")),
          20);
    EXPECT_EQ(pagesOf(pdf), 3);
    EXPECT_EQ(figures(), "[\"Folgeseite\",[14,254,43,269]]\n");
}

/// A head with a picture is no row: it is said once, and the rows beneath it keep the heads of their columns.
TEST_F(AccessibleTest, AGroupsHeadWithAPictureIsSaidOnce) {
    print(page(kGradient + layer("Kopf", 10, 10, field(5, 12, 20, "Nummer") + field(30, 12, 20, "Bezeichnung")) +
               layer("Gruppenkopf Jahr", 20, 20,
                     field(5, 22, 40, "Gruppe {{Jahr}}") +
                         "<rect x='5' y='30' width='10' height='5' fill='url(#v)'><title>Zeichen</title></rect>",
                     "data-on='Jahr' data-repeat=''") +
               layer("Zeile", 40, 10, field(5, 40, 20, "{{Nr}}") + field(30, 40, 20, "{{Name}}"))),
          12);
    EXPECT_EQ(pagesOf(pdf), 3);
    EXPECT_THAT(said(), StartsWith("Gruppe 2010\n")) << "before its table";
    EXPECT_EQ(outputOf("echo '" + said() + "' | grep -c 'Gruppe 2010'"), "1\n");
    EXPECT_EQ(figures(), "[\"Zeichen\",[14,183,43,198]]\n");
    const auto structure = outputOf("pdfinfo -struct '" + pdf.string() + "'");
    EXPECT_THAT(structure, Not(ContainsRegex("/Headers \\[\\([0-9a-f]+\\)\\]"))) << "each cell has two heads";
}

TEST_F(AccessibleTest, LinesWithoutAWordAreNoTable) {
    print(page(layer("Zeile", 20, 10,
                     "<rect x='5' y='20' width='5' height='5' fill='red'/>" +
                         field(5, 20, 40, "{{Name}}", "data-if='Nr > 99'"))),
          3);
    EXPECT_THAT(outputOf("pdfinfo -struct '" + pdf.string() + "'"), Not(HasSubstr("Table")));
}

/// Heads of two lines: the second one right beneath the first.
std::string headOf(double x, const std::string& upper, const std::string& lower) {
    const std::string at = "<text x='" + std::to_string(x) + "' y='";
    return at + "34'>" + upper + "</text>" + at + "37.6'>" + lower + "</text>";
}

TEST_F(AccessibleTest, AWordThatIsBrokenIsOneWord) {
    std::string heads, cells;
    int column = 0;
    for (const auto& [upper, lower] : {std::pair("Umsatz-", "erlöse"),
                                       {"Urlaubs-", "Übertrag"},
                                       {"Soll-", "und Iststd."},
                                       {"Weihn.-", "geld"},
                                       {"Kosten", "gesamt"}}) {
        heads += headOf(5 + 18 * column, upper, lower);
        cells += field(5 + 18 * column++, 40, 16, "{{Name}}");
    }
    print(page(layer("Kopf", 30, 10, heads) + layer("Zeile", 40, 10, cells)));
    EXPECT_THAT(said(),
                StartsWith("Umsatzerlöse\nUrlaubs-Übertrag\nSoll- und Iststd.\nWeihn.-geld\nKosten gesamt\n"));
}

TEST_F(AccessibleTest, ATextOfSeveralLinesKeepsItsWords) {
    print(page(layer("Zeile", 20, 10,
                     field(5, 20, 10, "{{Nr}}") +
                         field(20, 20, 14, "Aufmaß am Bau-Nebengebäude", "data-fit='wrap'", false, 15) +
                         field(40, 20, 14, "Donaudampfschifffahrt", "data-fit='wrap'", false, 15))));
    EXPECT_EQ(said(), "1\nAufmaß am Bau-Nebengebäude\nDonaudampfschifffahrt\n");
    EXPECT_THAT(textOf(pdf), AllOf(HasSubstr("am Bau- "), Not(HasSubstr("Donaudampfschiff")))) << "it is broken";
}

} // namespace
} // namespace kvtdruck::druckwerk
