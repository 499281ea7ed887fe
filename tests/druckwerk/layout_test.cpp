#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class LayoutTest : public ::testing::Test {
  protected:
    /// What is said about a layout with the fields Nr, Name and Betrag.
    std::vector<Finding> findings(const std::string& svg, bool unused = false) {
        writeFile(folder / "Liste.svg", svg);
        return checkLayout(folder / "Liste.svg",
                           {{"Nr", "1", true, true}, {"Name", "x", false, true}, {"Betrag", "2", true, true}},
                           unused);
    }

    /// The first error, with its code; "" where there is none.
    std::string error(const std::string& svg, std::int32_t code = kLayoutInvalid) {
        for (const auto& finding : findings(svg))
            if (finding.error) {
                EXPECT_EQ(finding.code, code) << finding.message;
                EXPECT_THAT(finding.message, HasSubstr("Liste.svg"));
                return finding.message;
            }
        return "";
    }

    /// Prints one line with the layout and gives the text.
    std::string printed(const std::string& svg) {
        writeFile(folder / "Liste.svg", svg);
        ReportDriver report(folder / "out.pdf");
        report.fields({{"Nr", "1"}, {"Name", "x"}, {"Betrag", "2"}});
        EXPECT_EQ(report.start(folder / "Liste"), 0) << (report.errors.empty() ? "" : report.errors[0].message);
        report.page();
        report.line();
        EXPECT_EQ(report.end(), 0);
        check(folder / "out.pdf");
        return rawTextOf(folder / "out.pdf");
    }

    static std::string row(const std::string& content, const std::string& attributes = "") {
        return page(layer("Zeile", 20, 10, content, attributes));
    }

    TemporaryFolder folder;
};

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

// --- Hostile layouts ---

TEST_F(LayoutTest, EntityBombsAreRefused) {
    std::string bomb = "<!DOCTYPE svg [<!ENTITY a0 'ha'>";
    for (int i = 1; i < 30; ++i)
        bomb += "<!ENTITY a" + std::to_string(i) + " '&a" + std::to_string(i - 1) + ";&a" + std::to_string(i - 1) +
                ";'>";
    EXPECT_THAT(error(bomb + "]><svg xmlns='http://www.w3.org/2000/svg'><text>&a29;</text></svg>", kLayoutRefused),
                HasSubstr("Entitäten"));
    EXPECT_THAT(
        error("<!DOCTYPE svg [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><svg xmlns='http://www.w3.org/2000/svg' "
              "width='1mm' height='1mm'><text>&x;</text></svg>",
              kLayoutRefused),
        HasSubstr("Entitäten"));
    EXPECT_THAT(error("<!DOCTYPE svg [<!ENTITY x '" + std::string(5, 'x') +
                          "'>]><svg xmlns='http://www.w3.org/2000/svg' id='&x;'/>",
                      kLayoutRefused),
                HasSubstr("Entitäten"));
}

TEST_F(LayoutTest, APlainDocumentTypeIsFine) {
    EXPECT_EQ(
        error("<!DOCTYPE svg PUBLIC '-//W3C//DTD SVG 1.1//EN' 'http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd'>" +
              row(field(5, 20, 20, "{{Nr}}"))),
        "");
}

TEST_F(LayoutTest, NothingOutsideIsEverReferredTo) {
    for (const char* reference :
         {"<use href='http://example.org/a.svg#b'/>", "<image xlink:href='../geheim.png'/>",
          "<image href='/etc/passwd'/>", "<image href='file:///etc/passwd'/>",
          "<image href='http://example.org/x.png'/>", "<rect style='fill:url(other.svg#a)'/>",
          "<rect fill='url(http://example.org/#a)'/>", "<style>@import 'http://example.org/x.css';</style>",
          "<style>text { fill: url(//example.org/a#b) }</style>"})
        EXPECT_THAT(error(row(reference), kLayoutRefused), HasSubstr("Verweis nach außen ist nicht erlaubt"))
            << reference;
    EXPECT_THAT(error("<?xml-stylesheet href='x.css'?>" + row(""), kLayoutRefused), HasSubstr("xml-stylesheet"));
    EXPECT_THAT(error(row("<script>alert(1)</script>"), kLayoutRefused), HasSubstr("Skripte"));
    EXPECT_THAT(error(row("<foreignObject/>"), kLayoutRefused), HasSubstr("foreignObject"));
}

TEST_F(LayoutTest, ALinkOutOfTheFolderIsRefused) {
    std::filesystem::create_symlink("/etc/hostname", folder / "bild.png");
    EXPECT_THAT(error(row("<image href='bild.png'/>"), kLayoutRefused), HasSubstr("Verweis nach außen"));
}

TEST_F(LayoutTest, CyclicAndMultiplyingUseIsRefused) {
    EXPECT_THAT(error(row("<g id='a'><use href='#b'/></g><g id='b'><use href='#a'/></g>"), kLayoutRefused),
                HasSubstr("Verwendung im Kreis"));
    EXPECT_THAT(error(row("<use id='u' xlink:href='#u'/>"), kLayoutRefused), HasSubstr("Verwendung im Kreis"));
    std::string nested = "<rect id='n0' width='1' height='1'/>";
    for (int i = 1; i < 40; ++i) {
        const std::string inner = "<use href='#n" + std::to_string(i - 1) + "'/>";
        nested.append("<g id='n").append(std::to_string(i)).append("'>").append(inner).append(inner).append("</g>");
    }
    EXPECT_THAT(error(row("<defs>" + nested + "</defs><use href='#n39'/>"), kLayoutRefused),
                HasSubstr("vervielfacht"));
}

// Which of two attributes with the same name a reader takes is up to it, so each is looked at.
TEST_F(LayoutTest, AnAttributeCannotHideBehindAnotherOfItsName) {
    const std::string q = "xmlns:q='http://example.org/q' ";
    for (const std::string hidden :
         {"<use xlink:href='#a' href='http://example.org/a.svg#b'/>", "<use href='#a' xlink:href='andere.svg#b'/>",
          "<image xlink:href='data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJ' href='../x'/>",
          "<image href='file:///etc/passwd' xlink:href='#a'/>",
          "<rect q:style='fill:red' style='fill:url(http://example.org/a.svg#b)' width='1' height='1'/>"})
        EXPECT_THAT(error(row(std::string("<g id='a' ").append(q).append(">").append(hidden).append("</g>")),
                          kLayoutRefused),
                    HasSubstr("Verweis nach außen ist nicht erlaubt"))
            << hidden;
}

TEST_F(LayoutTest, UseCannotMultiplyBehindAnotherAttribute) {
    std::string nested = "<rect id='n0' width='1' height='1'/>";
    for (int i = 1; i < 25; ++i) {
        const std::string inner = "<use xlink:href='#leer' href='#n" + std::to_string(i - 1) + "'/>";
        nested.append("<g id='n").append(std::to_string(i)).append("'>").append(inner).append(inner).append("</g>");
    }
    EXPECT_THAT(error(row("<defs><g id='leer'/>" + nested + "</defs><use href='#n24'/>"), kLayoutRefused),
                HasSubstr("vervielfacht"));
}

/// Elements without ids that each use a large one count as well.
TEST_F(LayoutTest, UsesWithoutIdsAreCounted) {
    std::string large = "<g id='gross'>";
    for (int i = 0; i < 5000; ++i)
        large += "<path/>";
    large += "</g>";
    std::string uses;
    for (int i = 0; i < 20; ++i)
        uses += "<use href='#gross'/>";
    EXPECT_THAT(error(row("<defs>" + large + "</defs>" + uses), kLayoutRefused), HasSubstr("vervielfacht"));
}

TEST_F(LayoutTest, MarkersAtManyPointsAreCounted) {
    std::string marker = "<marker id='m'>";
    for (int i = 0; i < 100; ++i)
        marker += "<path/>";
    std::string path = "M0 0";
    for (int i = 0; i < 1000; ++i)
        path += "L1 1";
    for (const std::string how : {"marker-mid='url(#m)'", "style='marker-mid:url(#m)'"})
        EXPECT_THAT(error(row(std::string("<defs>")
                                  .append(marker)
                                  .append("</marker></defs><path ")
                                  .append(how)
                                  .append(" d='")
                                  .append(path)
                                  .append("'/>")),
                          kLayoutRefused),
                    HasSubstr("vervielfacht"));
}

TEST_F(LayoutTest, AChainOfUsesIsNoDeeperThanElementsMayBe) {
    std::string chain = "<rect id='k0' width='1' height='1'/>";
    for (int i = 1; i < 9000; ++i)
        chain += "<use id='k" + std::to_string(i) + "' href='#k" + std::to_string(i - 1) + "'/>";
    EXPECT_THAT(error(row(chain), kLayoutRefused), HasSubstr("64 Ebenen"));
}

TEST_F(LayoutTest, PicturesWithinTheLayoutAreMeasured) {
    // The head of a PNG of 60,000 by 60,000 pixels.
    const std::string huge = "data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAA6mAAAOpgCAYAAAA=";
    EXPECT_THAT(error(row("<image href='" + huge + "'/>"), kLayoutRefused), HasSubstr("größer als 8192 Pixel"));
    EXPECT_THAT(error(row("<image href='data:image/svg+xml;base64,PHN2Zy8+'/>")), HasSubstr("weder PNG noch JPEG"));
}

TEST_F(LayoutTest, FiltersThatCostMoreThanTheirAreaAreRefused) {
    for (const char* name : {"feTurbulence", "feConvolveMatrix", "feImage", "feMorphology", "feDiffuseLighting"})
        EXPECT_THAT(error(row("<defs><filter id='f'><" + std::string(name) + "/></filter></defs>"), kLayoutRefused),
                    HasSubstr(name));
}

TEST_F(LayoutTest, IncludedFilesAreRefused) {
    EXPECT_THAT(
        error(row("<xi:include xmlns:xi='http://www.w3.org/2001/XInclude' href='/etc/passwd'/>"), kLayoutRefused),
        HasSubstr("xi:include"));
}

TEST_F(LayoutTest, AttributesAndTextsWithPlaceholdersAreBounded) {
    std::string attributes;
    for (int i = 0; i < 300; ++i)
        attributes += " a" + std::to_string(i) + "='1'";
    EXPECT_THAT(error(row("<g" + attributes + "/>"), kLayoutRefused), HasSubstr("250 Attribute"));
    EXPECT_THAT(error(row(field(5, 5, 40, "{{Name}}" + std::string(10'000, 'x'))), kLayoutRefused),
                HasSubstr("länger als 10.000 Zeichen"));
}

TEST_F(LayoutTest, DepthSizeAndNumberAreBounded) {
    std::string deep;
    for (int i = 0; i < 100; ++i)
        deep.insert(0, "<g>").append("</g>");
    EXPECT_THAT(error(row(deep), kLayoutRefused), HasSubstr("64 Ebenen"));
    std::string deeper(100000 * 3, ' ');
    for (std::size_t i = 0; i < deeper.size(); i += 3)
        deeper.replace(i, 3, "<g>");
    EXPECT_NE(error(row(deeper), kLayoutMalformed), "");
    std::string many;
    for (int i = 0; i < 20001; ++i)
        many += "<g/>";
    EXPECT_THAT(error(row(many), kLayoutRefused), HasSubstr("20.000 Elemente"));
    std::string large;
    large.resize(20'000'001, ' ');
    EXPECT_THAT(error(large, kLayoutRefused), HasSubstr("größer als 20 MB"));
}

TEST_F(LayoutTest, HugeAndStrangeNumbersDoNoHarm) {
    for (const char* page :
         {"width='1e308mm' height='1mm'", "width='-5mm' height='5mm'", "width='nan' height='5mm'",
          "width='5000mm' height='5mm'", "width='10mm' height='10mm' viewBox='0 0 0 0'",
          "width='10mm' height='10mm' viewBox='0 0 1e-300 1e-300'"})
        EXPECT_NE(error("<svg xmlns='http://www.w3.org/2000/svg' " + std::string(page) + "/>"), "") << page;
    printed(
        row("<path d='M0 0 L1e308 1e308 C 1 1 nan 2 3 inf'/><path d='M0,0 A1e-300 5 0 1 1 9,9 a0 0 0 0 0 0 0Z'/>"
            "<path d='m0 0zzzzhvcs5'/><circle r='-1'/><rect width='5' height='5' rx='1e5'/>"
            "<line x1='0' x2='99999' y1='0' y2='0' stroke='red' stroke-dasharray='0.000001'/>"
            "<g transform='matrix(1 2 3) scale(0) rotate(1e5)'><rect width='1' height='1'/></g>"
            "<text x='1' y='1' font-size='0'>x</text><text x='1' y='25' style='font-size:1e-9px'>y</text>"));
}

// --- Artwork ---

TEST_F(LayoutTest, ArtworkOfAllKindsIsPrinted) {
    writeFile(
        folder / "bild.png",
        outputOf("printf '%s' "
                 "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mP8z8BQDwAEhQGAhKmMIQAAAABJRU5ErkJggg== "
                 "| base64 -d"));
    const std::string text = printed(
        page("<defs><linearGradient id='v'><stop offset='0' stop-color='#f00'/><stop offset='1' "
             "stop-color='#00f'/></linearGradient></defs>" +
             layer("Hintergrund", 0, 100,
                   "<rect x='5' y='5' width='40' height='10' fill='url(#v)'/><image href='bild.png' x='50' y='5' "
                   "width='10' height='10'/>"
                   "<g opacity='0.5'><circle cx='70' cy='10' r='5'/><text x='65' y='20'>durchsichtig</text></g>"
                   "<rect x='5' y='30' width='10' height='10' "
                   "style='fill:#0f0;fill-opacity:0.3;stroke:#000;stroke-dasharray:1 1'/>"
                   "<text x='5' y='50'>zwei<tspan x='5' y='55'>Zeilen</tspan></text>") +
             layer("Zeile", 60, 10, field(5, 60, 40, "Zeile {{Nr}}"))));
    EXPECT_THAT(text, HasSubstr("zwei\nZeilen"));
    EXPECT_THAT(text, HasSubstr("Zeile 1"));
    // The red end of the gradient, the picture, the white between them.
    const std::string pixels = outputOf("pdftoppm -r 25.4 -f 1 -l 1 '" + (folder / "out.pdf").string() + "'");
    const auto pixel = [&](std::size_t x, std::size_t y) {
        const std::size_t head = pixels.find("255\n") + 4;
        const std::size_t width = std::stoul(pixels.substr(3));
        const std::size_t at = head + 3 * (y * width + x);
        return std::array<int, 3>{static_cast<unsigned char>(pixels[at]),
                                  static_cast<unsigned char>(pixels[at + 1]),
                                  static_cast<unsigned char>(pixels[at + 2])};
    };
    EXPECT_GT(pixel(6, 10)[0], 200);
    EXPECT_LT(pixel(6, 10)[2], 60);
    EXPECT_GT(pixel(43, 10)[2], 200);
    EXPECT_EQ(pixel(47, 10), (std::array<int, 3>{255, 255, 255}));
    EXPECT_NE(pixel(55, 10), (std::array<int, 3>{255, 255, 255}));
    EXPECT_NEAR(pixel(70, 10)[0], 128, 3);
    EXPECT_NEAR(pixel(9, 35)[0], 179, 3);
}

TEST_F(LayoutTest, HiddenLayersAndGuidesAreNotPrinted) {
    const std::string text =
        printed(page(layer("Notizen", 0, 10, field(5, 2, 60, "{{=kaputt(}} geheim"), "style='display:none'") +
                     layer("Zeile", 20, 10, field(5, 20, 40, "Zeile {{Nr}}"))));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("geheim")));
    EXPECT_THAT(text, HasSubstr("Zeile 1"));
}

TEST_F(LayoutTest, MovedGroupsAreReadWithTheirTransforms) {
    printed(page("<g inkscape:groupmode='layer' inkscape:label='Seitenkopf' transform='translate(0,30)'><g "
                 "transform='scale(2)'>" +
                 field(5, 5, 30, "verschoben") + "</g></g>"));
    const std::string boxes = boxesOf(folder / "out.pdf");
    EXPECT_NEAR(boxOf(boxes, "verschoben", "xMin"), 10 * 72 / 25.4, 0.1);
    EXPECT_NEAR(boxOf(boxes, "verschoben", "yMax"), (30 + 2 * 8.5) * 72 / 25.4, 4);
}

TEST_F(LayoutTest, StylesComeFromSheetClassAndAttribute) {
    printed(page("<g inkscape:groupmode='layer' inkscape:label='Seitenkopf' font-size='4'>"
                 "<text class='a gross' x='5' y='20'>Klasse</text><text class='gross' style='font-size:2px' x='5' "
                 "y='40'>Attribut</text></g>",
                 "/* { */ .gross, .nie { font-size: 10px }"));
    const std::string boxes = boxesOf(folder / "out.pdf");
    const auto height = [&](const char* word) { return boxOf(boxes, word, "yMax") - boxOf(boxes, word, "yMin"); };
    EXPECT_NEAR(height("Klasse") / height("Attribut"), 5, 0.1);
}

// --- Charts ---

TEST_F(LayoutTest, ChartsShowValuesLabelsAndLegend) {
    for (const char* kind : {"bars", "lines", "target", "share"}) {
        const std::string text = printed(page(layer(
            "Seitenkopf", 0, 90,
            "<g class='chart' font-size='2' data-chart='" + std::string(kind) +
                "' data-series='Nr, =Betrag*500; Betrag, Betrag' data-legend='Soll; Ist' data-labels='Jan; Feb'>"
                "<rect x='5' y='5' width='80' height='60'/></g>")));
        EXPECT_THAT(text, HasSubstr("Soll")) << kind;
        EXPECT_THAT(text, HasSubstr("Feb")) << kind;
        if (std::string(kind) != "share") {
            EXPECT_THAT(text, HasSubstr("1.000")) << kind;
        }
    }
}

TEST_F(LayoutTest, AChartOfLinesCollectsThem) {
    writeFile(
        folder / "Liste.svg",
        page(
            layer("Zeile", 5, 5, field(5, 5, 40, "{{Name}}")) +
            layer("Summe", 20, 60,
                  "<g class='chart' font-size='2' data-chart='bars' data-rows='Nr &lt;&gt; 2' data-series='Betrag' "
                  "data-labels='L{{Name}}'><rect x='5' y='22' width='80' height='50'/></g>")));
    ReportDriver report(folder / "out.pdf");
    report.fields({{"Nr", "1"}, {"Name", "a"}, {"Betrag", "10"}});
    ASSERT_EQ(report.start(folder / "Liste"), 0);
    report.page();
    for (const auto& [number, name] : {std::pair("1", "a"), {"2", "b"}, {"3", "c"}}) {
        report.fields({{"Nr", number}, {"Name", name}, {"Betrag", std::string(number) + "0"}});
        report.line();
    }
    ASSERT_EQ(report.end(), 0);
    const std::string text = rawTextOf(folder / "out.pdf");
    EXPECT_THAT(text, HasSubstr("La"));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("Lb")));
    EXPECT_THAT(text, HasSubstr("Lc"));
    EXPECT_THAT(text, HasSubstr("30"));
}

TEST_F(LayoutTest, ChartLabelsAreBrokenInTheWidthThatTheAxisLeaves) {
    // Wide numbers at the axis: for some of these lengths only they make the label too long for one line.
    for (int length = 10; length < 30; ++length) {
        const std::string label = std::string(static_cast<std::size_t>(length), 'n') + " Ende";
        const std::string text =
            printed(page(layer("Seitenkopf", 0, 90,
                               "<g class='chart' font-size='2' data-chart='bars' data-series='=Betrag*10000000, "
                               "Betrag' data-labels='" +
                                   label + "; Kurz'><rect x='5' y='5' width='80' height='60'/></g>")));
        EXPECT_THAT(text, HasSubstr("Ende")) << length;
    }
}

TEST_F(LayoutTest, AChartThatIsTooSmallForItsFontEnds) {
    // Without a font size it is 16 units: the numbers at the axis alone are wider than the chart.
    for (const char* kind : {"bars", "lines", "target", "share"})
        for (const int width : {1, 20, 40, 60, 80})
            printed(
                page(layer("Seitenkopf", 0, 90,
                           "<g class='chart' data-chart='" + std::string(kind) +
                               "' data-series='=Betrag*10000000, Betrag, Betrag; Nr, Nr, Nr' data-labels='Januar; "
                               "Februar; M'><rect x='5' y='5' width='" +
                               std::to_string(width) + "' height='60'/></g>")));
}

TEST_F(LayoutTest, AChartWithoutFiguresIsEmptyNotWrong) {
    printed(page(layer(
        "Seitenkopf", 0, 90,
        "<g class='chart' data-chart='bars' data-series='Fehlt_1..3'><rect x='5' y='5' width='80' height='60'/></g>"
        "<g class='chart' data-chart='share' data-series='=1/0; Fehlt'><rect x='5' y='5' width='80' "
        "height='60'/></g>")));
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
