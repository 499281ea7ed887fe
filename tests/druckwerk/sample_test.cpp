// What a layout shows in a drawing program: values in the place of placeholders, and the same print.
#include "druckwerk/layout/layout_sample.h"
#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class SampleTest : public ::testing::Test {
  protected:
    /// Prints three lines with the layout into `name`.
    void print(const std::string& svg, const std::string& name) {
        writeFile(folder / "Liste.svg", svg);
        ReportDriver report(folder / name);
        report.options.sampled = [this](const LayoutSample& sample) { sample_ = sample; };
        report.fields({{"Nr", ""}, {"Name", ""}, {"Betrag", ""}});
        report.start(folder / "Liste");
        report.page();
        for (const auto& values : {ReportDriver::Values{{"Nr", "1"}, {"Name", "Anna & <Co>"}, {"Betrag", "1234,5"}},
                                   {{"Nr", "2"}, {"Name", "Bert"}, {"Betrag", "-7"}},
                                   {{"Nr", "3"}, {"Name", ""}, {"Betrag", "0"}}}) {
            report.fields(values);
            report.line();
        }
        ASSERT_EQ(report.end(), 0) << (report.errors.empty() ? "" : report.errors[0].message);
        warnings = report.warnings;
    }
    /// The layout with the values of such a print. It prints the same, to the byte, and shows the same once more.
    std::string shown(const std::string& svg) {
        print(svg, "before.pdf");
        auto result = withSample(svg, sample_).value();
        print(result, "after.pdf");
        EXPECT_EQ(readFile(folder / "after.pdf"), readFile(folder / "before.pdf"));
        EXPECT_EQ(withSample(result, sample_).value(), result);
        return result;
    }
    static std::string row(const std::string& content) { return page(layer("Zeile", 20, 10, content)); }

    TemporaryFolder folder;
    LayoutSample sample_;
    std::vector<std::string> warnings;
};

TEST_F(SampleTest, AFieldShowsItsFirstValueAndKeepsItsPlaceholderAsItsName) {
    const auto svg = shown(row(field(5, 20, 40, "{{Name}}: {{Betrag|#.##0,00}}")));
    EXPECT_THAT(svg, AllOf(HasSubstr("inkscape:label=\"{{Name}}: {{Betrag|#.##0,00}}\""),
                           HasSubstr(">Anna &amp; &lt;Co&gt;: 1.234,50</text>")));
}

TEST_F(SampleTest, ATextOutsideOfFieldsHasItsOwnName) {
    EXPECT_THAT(shown(row("<text x='5' y='25'>Nummer {{Nr}}</text>")),
                HasSubstr("inkscape:label=\"Nummer {{Nr}}\" data-sample=\"Nummer 1\">Nummer 1</text>"));
}

TEST_F(SampleTest, PlaceAndStyleOfTheTextStay) {
    // As a drawing program writes a text: the place and the style are those of its line.
    shown(row(
        "<text x='5' y='25'><tspan x='9' y='26' style='font-weight:bold;fill:#ff0000'>{{Name}}</tspan></text>"));
    shown(row("<text x='5' y='25'>Nr. <tspan style='fill:#ff0000'>{{Nr}}</tspan> <tspan x='5' "
              "y='28'>{{Name}}</tspan></text>"));
}

TEST_F(SampleTest, ATextThatShowsNothingKeepsItsStyle) {
    shown(row("<text x='5' y='25'><tspan x='9' y='26' style='font-weight:bold'>{{leer}}{{Nichts}}</tspan></text>"));
}

TEST_F(SampleTest, LinesAndSmallerLettersAreShownAsTheyPrint) {
    const std::string words = "{{Name}} und viele weitere Worte";
    EXPECT_THAT(
        shown(row("<g class='field' data-fit='wrap' data-align='bottom'><rect x='5' y='20' width='20' height='9'/>"
                  "<text x='5' y='28'>" +
                  words + "</text></g>")),
        AllOf(HasSubstr("dy=\"-1.2em\""), HasSubstr("dy=\"1.2em\"")));
    EXPECT_THAT(shown(row(field(5, 20, 20, words, "data-fit='shrink'"))), HasSubstr("font-size:0."));
    EXPECT_THAT(shown(row(field(5, 20, 20, words))), HasSubstr("…</text>"));
}

TEST_F(SampleTest, WhatDoesNotHoldForTheFirstLineIsHiddenAndPrintsAllTheSame) {
    const auto svg =
        shown(row(field(5, 20, 20, "eins", "data-if='Nr = 1'") + field(5, 20, 20, "zwei", "data-if='Nr = 2'") +
                  "<rect x='5' y='20' width='3' height='3' data-if='Nr = 3' style='display:inline;fill:red'/>"));
    EXPECT_THAT(svg, AllOf(HasSubstr("data-if=\"Nr = 2\" display=\"none\""),
                           HasSubstr("data-if=\"Nr = 3\" style=\"fill:red\" display=\"none\""),
                           Not(HasSubstr("data-if=\"Nr = 1\" display"))));
    EXPECT_THAT(rawTextOf(folder / "after.pdf"), AllOf(HasSubstr("eins"), HasSubstr("zwei")));
}

TEST_F(SampleTest, HiddenArtworkWithAConditionPrints) {
    shown(row("<linearGradient id='g'><stop stop-color='red'/></linearGradient>"
              "<g data-if='Nr = 2'><rect x='5' y='20' width='9' height='3' fill='url(#g)'/></g>"));
}

TEST_F(SampleTest, AChartIsDrawnInTheUnitsOfItsGroup) {
    const auto svg = shown(page(layer("Zeile", 20, 5, field(5, 20, 20, "{{Nr}}")) +
                                layer("Summe", 30, 50,
                                      "<g class='chart' transform='translate(5,3)' data-chart='bars' data-rows='1' "
                                      "data-series='Betrag' data-labels='{{Name}}' font-size='3px'>"
                                      "<rect x='0' y='27' width='90' height='40'/></g>")));
    EXPECT_THAT(svg,
                AllOf(HasSubstr("<g class=\"sample\" transform=\"matrix(0.352777778,0,0,0.352777778,-5,-3)\">"),
                      HasSubstr(">Anna &amp; &lt;Co&gt;</text>"), HasSubstr(">Bert</text>")));
}

TEST_F(SampleTest, BandsThatWereNotPrintedShowWhatTheyWouldAtTheEnd) {
    EXPECT_THAT(shown(list(field(5, 20, 20, "{{Nr}}"),
                           layer("Übertrag", 40, 5, field(5, 40, 40, "{{=sum(Nr)}} von {{Seiten}}")))),
                HasSubstr(">6 von "));
}

TEST_F(SampleTest, AnObjectKeepsTheNameThatItsAuthorHasGivenIt) {
    const auto svg = shown(row(field(5, 20, 40, "{{Name}}", "inkscape:label='Mein Feld'") +
                               "<text x='50' y='25' inkscape:label='Nummer'>{{Nr}}</text>"));
    EXPECT_THAT(svg, AllOf(HasSubstr("inkscape:label=\"Mein Feld\""), HasSubstr("inkscape:label=\"{{Name}}\""),
                           HasSubstr("inkscape:label=\"Nummer\">{{Nr}}</text>")));
}

TEST_F(SampleTest, WordsWrittenIntoASampleAreTold) {
    auto svg = shown(row(field(5, 20, 40, "Summe {{Nr}}")));
    EXPECT_THAT(warnings, IsEmpty());
    svg.replace(svg.find(">Summe 1<"), 9, ">Gesamt 1<");
    print(svg, "after.pdf");
    EXPECT_THAT(warnings, Contains(HasSubstr("„Gesamt 1“ ist nur ein Beispielwert; gedruckt wird „Summe {{Nr}}“")));
    svg.replace(svg.find(">Gesamt 1<"), 10, ">Gesamt {{Nr}}<");
    print(svg, "after.pdf");
    EXPECT_THAT(warnings, IsEmpty());
    EXPECT_THAT(rawTextOf(folder / "after.pdf"), HasSubstr("Gesamt 1"));
    EXPECT_THAT(withSample(svg, sample_).value(), HasSubstr("inkscape:label=\"Gesamt {{Nr}}\""));
}

TEST_F(SampleTest, AFieldOutsideOfAllLayersIsNoLayer) {
    shown(page(field(5, 2, 40, "{{Name}}") + layer("Zeile", 20, 10, field(5, 20, 20, "{{Nr}}"))));
}

TEST_F(SampleTest, PlaceholdersInNamesAreChecked) {
    writeFile(folder / "Liste.svg", row(field(5, 20, 40, "1.234,56", "inkscape:label='{{Betrg}}'") +
                                        field(50, 20, 40, "1", "inkscape:label='{{Nr'")));
    std::vector<std::string> messages;
    for (const auto& finding : checkLayout(folder / "Liste.svg", {{"Betrag", "2", true, true}}))
        messages.push_back(finding.message);
    EXPECT_THAT(messages, Contains(HasSubstr("Platzhalter ohne Ende")));
    writeFile(folder / "Liste.svg", row(field(5, 20, 40, "1.234,56", "inkscape:label='{{Betrg}}'")));
    messages.clear();
    for (const auto& finding : checkLayout(folder / "Liste.svg", {{"Betrag", "2", true, true}}))
        messages.push_back(finding.message);
    EXPECT_THAT(messages, Contains(HasSubstr("Unbekannter Name „Betrg“ (ähnlich: „Betrag“)")));
}

TEST_F(SampleTest, WithoutALineThereIsNoSample) {
    writeFile(folder / "Liste.svg", row(field(5, 20, 40, "{{Name}}")));
    ReportDriver report(folder / "out.pdf");
    bool any = false;
    report.options.sampled = [&](const LayoutSample&) { any = true; };
    report.start(folder / "Liste");
    report.page();
    EXPECT_EQ(report.end(), 0);
    EXPECT_FALSE(any);
}

} // namespace
} // namespace kvtdruck::druckwerk
