// What is said of layouts.
#include "layout_fixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST_F(LayoutTest, ASoundLayoutGivesNoFindings) {
    EXPECT_THAT(findings(row(field(5, 20, 20, "{{Nr}}") + field(30, 20, 20, "{{Name}}") +
                             field(60, 20, 20, "{{Betrag|0,00}}") +
                             "<g class='chart diagramm' data-chart='bars' data-series='Nr'>"
                             "<rect x='5' y='20' width='20' height='5'/></g>")),
                IsEmpty());
}

TEST_F(LayoutTest, UnknownAndUnusedNamesAreReportedWithNearOnes) {
    std::vector<std::string> messages;
    for (const auto& finding :
         findings(row(field(5, 20, 20, "{{nr}}") + field(30, 20, 20, "{{Betraege}} {{Zzzzzzzz}}")), true)) {
        EXPECT_FALSE(finding.error);
        messages.push_back(finding.message);
    }
    EXPECT_THAT(messages, Contains(HasSubstr("Unbekannter Name „nr“ (ähnlich: „Nr“)")));
    EXPECT_THAT(messages, Contains(HasSubstr("Unbekannter Name „Betraege“ (ähnlich: „Betrag“)")));
    EXPECT_THAT(messages, Contains(::testing::EndsWith("Unbekannter Name „Zzzzzzzz“")));
    EXPECT_THAT(messages, Contains(HasSubstr("Feld „Name“ wird nicht gedruckt")));
}

TEST_F(LayoutTest, ANameThatStandsOnlyUnderAConditionMayBeMissing) {
    const auto guarded = "<g data-if=\"Name &lt;> ''\">" + field(5, 20, 20, "{{Zzzzzzzz}}") + "</g>";
    const auto shown = field(30, 20, 20, "{{Nr}}") + field(60, 20, 20, "{{Betrag|0,00}}");
    EXPECT_THAT(findings(row(guarded + shown)), IsEmpty());
    EXPECT_THAT(findings(row(guarded + field(5, 20, 20, "{{Zzzzzzzz}}") + shown)), SizeIs(1));
}

TEST_F(LayoutTest, NamesWithinAggregatesChartsAndConditionsAreNames) {
    const std::string chart = "<g id='x' class='chart' data-chart='bars' data-legend='a' ";
    const std::string box = "><rect x='5' y='20' width='20' height='5'/></g>";
    for (const auto& element :
         {field(5, 20, 20, "{{=sum(Betrga)}}", "id='x'"), field(5, 20, 20, "{{=1+avg(Nr*Betrga)|0}}", "id='x'"),
          field(5, 20, 20, "{{Nr}}", "id='x' data-if='sum(Betrga) > 0'"),
          field(5, 20, 20, "{{Nr}}", "id='x' data-if='leer(Betrga)'"),
          "<g data-if='Nr > 0'>" + field(5, 20, 20, "{{=sum(Betrga)}}", "id='x'") + "</g>",
          std::string(chart).append("data-series='Nr, Betrga'").append(box),
          std::string(chart).append("data-series='=sum(Betrga)'").append(box),
          std::string(chart).append("data-series='Nr' data-labels='{{Betrga}}'").append(box)}) {
        const auto found = findings(row(element));
        ASSERT_THAT(found, SizeIs(1)) << element;
        EXPECT_THAT(found[0].message, HasSubstr("Zeile 2, Ebene „Zeile“, <g id=\"x\">: Unbekannter Name „Betrga“ "
                                                "(ähnlich: „Betrag“)"));
    }
    for (const char* content : {"{{=sum(Betrag)}}", "{{=sum(Nr*Betrag)}}"})
        for (const auto& finding : findings(row(field(5, 20, 20, content)), true))
            EXPECT_THAT(finding.message, ::testing::Not(HasSubstr("„Betrag“"))) << content;
}

TEST_F(LayoutTest, AnUnknownNameInASumIsReportedWhenPrinting) {
    writeFile(folder / "Liste.svg", row(field(5, 20, 40, "{{=sum(Betrga)}}")));
    ReportDriver report(folder / "out.pdf");
    report.fields({{"Betrag", "2"}});
    ASSERT_EQ(report.start(folder / "Liste"), 0);
    EXPECT_THAT(report.warnings, Contains(HasSubstr("Unbekannter Name „Betrga“ (ähnlich: „Betrag“)")));
}

/// A slip of the pen, and what is said about it.
struct Slip {
    std::string svg;
    std::string message;
};

// long: a table, with an entry for each slip.
TEST_F(LayoutTest, SlipsOfThePenAreReportedWithLineLayerAndWhatWasMeant) {
    const std::string nr = field(5, 20, 20, "{{Nr}}");
    const auto attribute = [&](const std::string& text) { return row(field(5, 20, 20, "{{Nr}}", text)); };
    const auto chart = [&](const std::string& text) {
        return row("<g class='chart' data-chart='bars' data-series='Nr' " + text +
                   "><rect x='5' y='20' width='20' height='5'/></g>");
    };
    std::vector<Slip> slips;
    for (const auto& [wrong, right] : {std::pair("Zeilen", "Zeile"),
                                       {"zeile", "Zeile"},
                                       {"Zeil", "Zeile"},
                                       {"Seitenfuss", "Seitenfuß"},
                                       {"Seitenfuß ", "Seitenfuß"},
                                       {"Seitenkpof", "Seitenkopf"},
                                       {"kopf", "Kopf"},
                                       {"Kof", "Kopf"},
                                       {"Summen", "Summe"},
                                       {"Sume", "Summe"},
                                       {"Uebertrag", "Übertrag"},
                                       {"Vortag", "Vortrag"},
                                       {"Vortrag:", "Vortrag"},
                                       {"Übertrg", "Übertrag"},
                                       {"Gruppenfuss", "Gruppenfuß"},
                                       {"Gruppenkopff", "Gruppenkopf"},
                                       {"Hintergund", "Hintergrund"}})
        slips.push_back({page(layer(wrong, 20, 10, nr)), std::string("Zeile 2, Ebene „") + wrong +
                                                             "“, <g>: Ebene „" + wrong +
                                                             "“ gibt es nicht, sie wird auf jede Seite gedruckt "
                                                             "(ähnlich: „" +
                                                             right + "“)"});
    slips.push_back(
        {page(layer("Positionen", 20, 10, nr)), "Ebene „Positionen“, <g>: Ebene „Positionen“ hat ein Rechteck"});
    for (const auto& [wrong, right] : {std::pair("data-wenn='Nr=1'", "data-if"),
                                       {"data-bedingung='Nr=1'", "data-if"},
                                       {"data-iff='Nr=1'", "data-if"},
                                       {"data-If='Nr=1'", "data-if"},
                                       {"data-fitt='cut'", "data-fit"},
                                       {"data-wachsen='1'", "data-grow"},
                                       {"data-grwo='1'", "data-grow"}})
        slips.push_back({attribute(wrong), std::string("Zeile 2, Ebene „Zeile“, <g>: Attribut „") +
                                               std::string(wrong).substr(0, std::string(wrong).find('=')) +
                                               "“ gibt es nicht (ähnlich: „" + right + "“)"});
    for (const auto& [wrong, right] : {std::pair("data-serie='Nr'", "data-series"),
                                       {"data-reihen='Nr'", "data-series"},
                                       {"data-label='x'", "data-labels"},
                                       {"data-lables='x'", "data-labels"},
                                       {"data-beschriftung='x'", "data-labels"},
                                       {"data-legende='x'", "data-legend"},
                                       {"data-colours='red'", "data-colors"},
                                       {"data-farben='red'", "data-colors"},
                                       {"data-row='1'", "data-rows"},
                                       {"data-zeilen='1'", "data-rows"},
                                       {"data-fromat='0'", "data-format"}})
        slips.push_back({chart(wrong), std::string("Ebene „Zeile“, <g>: Attribut „") +
                                           std::string(wrong).substr(0, std::string(wrong).find('=')) +
                                           "“ gibt es nicht (ähnlich: „" + right + "“)"});
    for (const auto& [wrong, right] : {std::pair("data-newpage='1'", "data-new-page"),
                                       {"data-neue-seite='1'", "data-new-page"},
                                       {"data-bookmarks='x'", "data-bookmark"},
                                       {"data-lesezeichen='x'", "data-bookmark"},
                                       {"data-wenn='1'", "data-if"},
                                       {"data-wiederholen='1'", "data-repeat"},
                                       {"data-repaet='1'", "data-repeat"}})
        slips.push_back({row(nr, wrong), std::string("Zeile 2, Ebene „Zeile“, <g>: Attribut „") +
                                             std::string(wrong).substr(0, std::string(wrong).find('=')) +
                                             "“ gibt es nicht (ähnlich: „" + right + "“)"});
    slips.push_back({attribute("data-series='Nr'"), "Attribut „data-series“ gilt nur für Diagramme"});
    slips.push_back({attribute("data-new-page='1'"), "Attribut „data-new-page“ gilt nur für Ebenen"});
    slips.push_back({chart("data-fit='cut'"), "Attribut „data-fit“ gilt nur für Felder"});
    slips.push_back({chart("data-bookmark='x'"), "Attribut „data-bookmark“ gilt nur für Ebenen"});
    for (const auto& [wrong, right] : {std::pair("Field", "field"),
                                       {"feld", "field"},
                                       {"fields", "field"},
                                       {"filed", ""},
                                       {"Chart", "chart"},
                                       {"diagramm", "chart"},
                                       {"Band", "band"}})
        if (*right != 0)
            slips.push_back({row(nr + "<g class='" + wrong + "'/>"),
                             std::string("Klasse „") + wrong + "“ hat keine Wirkung (ähnlich: „" + right + "“)"});
    slips.push_back(
        {row(field(95, 20, 20, "{{Nr}}")), "Zeile 2, Ebene „Zeile“: Feld ragt über den Rand der Seite hinaus"});
    slips.push_back({row(field(-5, 20, 20, "{{Nr}}")), "Feld ragt über den Rand der Seite hinaus"});
    slips.push_back({row(field(5, 27, 20, "{{Nr}}")), "Feld ragt aus dem Rechteck der Ebene hinaus"});
    slips.push_back({row(field(5, 15, 20, "{{Nr}}")), "Feld ragt aus dem Rechteck der Ebene hinaus"});
    slips.push_back({row("<text x='120' y='25'>{{Nr}}</text>"), "Text liegt außerhalb der Seite"});
    slips.push_back({page(layer("Zeile", 20, 10, nr) + layer("Seitenfuß", 95, 5, field(5, 98, 20, "{{Nr}}"))),
                     "Ebene „Seitenfuß“: Feld ragt über den Rand der Seite hinaus"});
    slips.push_back({page(layer("Zeile", 92, 8, field(5, 92, 20, "{{Nr}}")) + layer("Seitenfuß", 90, 5, "")),
                     "über dem Seitenfuß ist kein Platz für eine Zeile"});
    slips.push_back({page(layer("Gruppenkopf", 20, 10, nr, "data-on='Nr'")), "wird die Ebene nie gedruckt"});
    EXPECT_GE(slips.size(), 60U);
    for (const Slip& slip : slips) {
        const auto found = findings(slip.svg);
        std::string all;
        for (const auto& finding : found)
            all += finding.message + "\n";
        EXPECT_THAT(all, HasSubstr(slip.message)) << slip.svg;
    }
}

TEST_F(LayoutTest, AnUnknownNamePrintsAsEmptyWithAWarning) {
    writeFile(folder / "Liste.svg", row(field(5, 20, 40, "[{{Unbekannt}}]")));
    ReportDriver report(folder / "out.pdf");
    ASSERT_EQ(report.start(folder / "Liste"), 0);
    report.page();
    report.line();
    ASSERT_EQ(report.end(), 0);
    EXPECT_THAT(report.warnings, Contains(HasSubstr("Unbekannter Name „Unbekannt“")));
    EXPECT_THAT(rawTextOf(folder / "out.pdf"), HasSubstr("[]"));
}

TEST_F(LayoutTest, MessagesNameLineLayerAndElement) {
    const std::string message = error(row("\n\n<g id='feld7' class='field'><text x='1' y='1'>{{Nr}}</text></g>"));
    EXPECT_THAT(message, HasSubstr("Zeile 4"));
    EXPECT_THAT(message, HasSubstr("Ebene „Zeile“"));
    EXPECT_THAT(message, HasSubstr("<g id=\"feld7\">: Feld ohne Rechteck"));
}

TEST_F(LayoutTest, ABrokenLayoutStopsTheJobWithItsOwnCode) {
    writeFile(folder / "Liste.svg", row(field(5, 20, 20, "{{Betrag|0,0,0}}")));
    ReportDriver report(folder / "out.pdf");
    EXPECT_EQ(report.start(folder / "Liste"), kLayoutInvalid);
    ASSERT_THAT(report.errors, SizeIs(1));
    EXPECT_THAT(report.errors[0].message, HasSubstr("Ungültiges Zahlenformat „0,0,0“: zwei Kommas"));
    EXPECT_EQ(report.page(), kWrongOrder);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.pdf"));
}

TEST_F(LayoutTest, WhatALayoutCanGetWrong) {
    EXPECT_THAT(error(page("<rect width='1' height='1'/>")), HasSubstr("Keine Ebenen gefunden"));
    EXPECT_THAT(error("<html/>", kLayoutMalformed), HasSubstr("Wurzelelement ist nicht <svg>"));
    EXPECT_THAT(error("<svg xmlns='http://www.w3.org/2000/svg'/>"), HasSubstr("Seitengröße"));
    EXPECT_THAT(error("<svg xmlns='http://www.w3.org/2000/svg' width='100mm' height='100mm' viewBox='0 0 10 20'/>"),
                HasSubstr("Seitenverhältnisse"));
    EXPECT_THAT(error(page("<g inkscape:groupmode='layer' inkscape:label='Zeile'/>")),
                HasSubstr("hat kein Rechteck der Klasse „band“"));
    EXPECT_THAT(error(page(layer("Gruppenkopf", 10, 5, "") + layer("Zeile", 20, 5, ""))),
                HasSubstr("braucht data-on"));
    EXPECT_THAT(error(row(field(5, 20, 20, "{{Nr"))), HasSubstr("Platzhalter ohne Ende"));
    EXPECT_THAT(error(row(field(5, 20, 20, "{{=Nr+}}"))), HasSubstr("Ungültiger Ausdruck „Nr+“"));
    EXPECT_THAT(error(row("", "data-new-page='Nr ='")), HasSubstr("Ungültiger Ausdruck"));
    EXPECT_THAT(error(row(field(5, 20, 20, "x", "data-if='('"))), HasSubstr("Ungültiger Ausdruck"));
    EXPECT_THAT(error(row("<g class='field'><rect width='1' height='1'/></g>")), HasSubstr("Feld ohne Text"));
    EXPECT_THAT(error(row("<g transform='rotate(5)'>" + field(5, 20, 20, "{{Nr}}") + "</g>")),
                HasSubstr("ist gedreht"));
    EXPECT_THAT(error(row(field(5, 20, 20, "x", "data-fit='zoom'"))), HasSubstr("data-fit=\"zoom\""));
    EXPECT_THAT(error(row(field(5, 20, 20, "x", "data-grow='1'"))), HasSubstr("data-grow braucht"));
    EXPECT_THAT(error(row("<text style='shape-inside:url(#a)' x='1' y='1'>x</text>")), HasSubstr("Fließtext"));
    EXPECT_THAT(error(row("<flowRoot/>")), HasSubstr("Fließtext"));
    EXPECT_THAT(error(row("<rect width='1e9' height='1'/>")), HasSubstr("ungültige Länge width"));
    EXPECT_THAT(error(row("<g style='opacity:0.5'><text>{{Nr}}</text></g>")), HasSubstr("nicht möglich"));
    EXPECT_THAT(error(row("<g class='chart' data-chart='torte'><rect width='9' height='9'/></g>")),
                HasSubstr("data-chart"));
    EXPECT_THAT(
        error(row("<g class='chart' data-chart='bars' data-series='a_12..01'><rect width='9' height='9'/></g>")),
        HasSubstr("Ungültiger Bereich"));
    EXPECT_THAT(
        error(row(
            "<g class='chart' data-chart='bars' data-rows='1' data-series='a'><rect width='9' height='9'/></g>")),
        HasSubstr("data-rows geht nur in Summe und Gruppenfuß"));
    EXPECT_THAT(error(page(layer("Zeile", 20, 5, "") + layer("Zeile", 30, 5, ""))), HasSubstr("gibt es zweimal"));
}

TEST_F(LayoutTest, WhatIsNotUnderstoodIsReportedWithLineAndElement) {
    const std::string text = field(5, 20, 20, "{{Nr}} {{Name}} {{Betrag|0}}");
    for (const auto& [element, reason] :
         {std::pair("<rect id='x' width='1' height='1' fill='darkredd'/>", "fill: darkredd"),
          {"<rect id='x' width='1' height='1' style='stroke-width:breit'/>", "stroke-width: breit"},
          {"<g id='x' transform='rotat(45)'/>", "transform: rotat(45)"},
          {"<g id='x' style='transform:translate(1e9px,0)'/>", "transform: translate(1e9px,0)"},
          {"<path id='x' d='M0 0 L 1'/>", "Pfad wird nur bis"},
          {"<text id='x' style='font:bold 3px Arial'>x</text>", "font: bold 3px Arial"},
          {"<text id='x' fill-opacity='0.5'>{{Nr}}</text>", "deckend"},
          {"<style id='x'>rect { fill: rott }</style>", "fill: rott"}}) {
        const auto found = findings(row(text + "\n\n" + element));
        ASSERT_THAT(found, SizeIs(1)) << element;
        EXPECT_FALSE(found[0].error);
        EXPECT_THAT(found[0].message, HasSubstr("Zeile 4"));
        EXPECT_THAT(found[0].message, HasSubstr(" id=\"x\">: "));
        EXPECT_THAT(found[0].message, HasSubstr(reason));
    }
    EXPECT_THAT(error(row("<text x='links'>a</text>")), HasSubstr("ungültige Länge x=\"links\""));
}

TEST_F(LayoutTest, NamedColoursAndTransformsPrint) {
    const auto content = [&](const std::string& element) {
        printed(row(element));
        return outputOf("qpdf --stream-data=uncompress '" + (folder / "out.pdf").string() + "' -");
    };
    EXPECT_THAT(content("<rect width='10' height='10' fill='DarkRed'/>"), HasSubstr(".545 0 0 rg"));
    EXPECT_THAT(content("<rect width='10' height='10' style='transform:translate(10px-5px);fill:red'/>"),
                HasSubstr("28.35 "));
}

TEST_F(LayoutTest, DamagedFiles) {
    EXPECT_THAT(error("", kLayoutMalformed), HasSubstr("kein wohlgeformtes XML"));
    EXPECT_THAT(error("<svg", kLayoutMalformed), HasSubstr("kein wohlgeformtes XML"));
    EXPECT_THAT(error("<svg>\n<g>\n</svg>", kLayoutMalformed),
                HasSubstr("Zeile 3: Datei ist kein wohlgeformtes XML"));
    EXPECT_THAT(error(row("\xff\xfe"), kLayoutMalformed), HasSubstr("Zeichenkodierung"));
    EXPECT_THAT(error(row("<text>\xc3</text>"), kLayoutMalformed), HasSubstr("Zeichenkodierung"));
    EXPECT_THAT(error(std::string("\0\0\0\0", 4), kLayoutMalformed), HasSubstr("kein wohlgeformtes XML"));
}

TEST_F(LayoutTest, AFileThatIsNoFileIsUnreadable) {
    std::filesystem::create_directory(folder / "Ordner.svg");
    const auto found = checkLayout(folder / "Ordner.svg", {});
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].code, kLayoutUnreadable);
}

// --- The layouts that come with the system ---

class ShippedLayout : public ::testing::TestWithParam<std::filesystem::path> {};

TEST_P(ShippedLayout, HasNoErrors) {
    for (const auto& finding : checkLayout(GetParam(), {}))
        EXPECT_FALSE(finding.error) << finding.message;
}

/// Drawings that layouts share have names in lower case.
std::vector<std::filesystem::path> shippedLayouts() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(KVT_LAYOUTS))
        if (entry.path().extension() == ".svg" && std::isupper(entry.path().filename().native()[0]))
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

INSTANTIATE_TEST_SUITE_P(All, ShippedLayout, ::testing::ValuesIn(shippedLayouts()),
                         [](const auto& layout) { return layout.param.stem().string(); });

TEST(ShippedLayouts, AreThoseOfEighteenReportsAndTheFrontOfABinder) {
    EXPECT_THAT(shippedLayouts(), SizeIs(18 + 2));
}

} // namespace
} // namespace kvtdruck::druckwerk
