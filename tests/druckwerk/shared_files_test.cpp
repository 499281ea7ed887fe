// Files that layouts share: style sheets that they import, drawings that they show as pictures, the company's logo.
#include "layout_text.h"
#include "pdf_reader.h"
#include "report_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kImport = "@import url(\"stil.css\");";

class SharedFiles : public ::testing::Test {
  protected:
    SharedFiles() {
        std::filesystem::create_directory(own());
        std::filesystem::create_directory(behind());
        writeFile(behind() / "stil.css",
                  "text { font-family: 'Liberation Sans'; font-size: 3px }\n.rot { fill: #ff0000 }\n");
        writeFile(behind() / "kopf.svg", head("<text class='rot' x='1' y='5'>Kopf {{Nr}}</text>"));
    }
    std::filesystem::path own() const { return folder / "own"; }
    std::filesystem::path behind() const { return folder / "behind"; }

    static std::string head(const std::string& content) {
        return "<svg xmlns='http://www.w3.org/2000/svg' width='40mm' height='10mm' viewBox='0 0 40 10'>" + content +
               "</svg>";
    }
    static std::string picture(const std::string& link = "kopf.svg") {
        return "<image xlink:href='" + link + "' x='10' y='20' width='40' height='10'/>";
    }
    /// A layout with `style` that shows `content` with each line.
    static std::string sheet(const std::string& style, const std::string& content) {
        return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
               "xmlns:inkscape='http://www.inkscape.org/namespaces/inkscape' width='100mm' height='100mm' "
               "viewBox='0 0 "
               "100 100'>\n<style>" +
               style + "</style>\n" + layer("Zeile", 20, 30, content) + "</svg>\n";
    }

    /// Prints a line and gives the page's operators.
    std::string printed(const std::string& svg) {
        writeFile(own() / "Liste.svg", svg);
        ReportDriver report(folder / "out.pdf");
        report.options.level = PdfLevel::Plain;
        report.options.layoutsBehind = behind();
        report.options.logo = logo;
        report.fields({{"Nr", "7"}});
        messages.clear();
        if (report.start(own() / "Liste") != 0) {
            messages.push_back(report.errors.at(0).message);
            return "";
        }
        report.page();
        report.line();
        EXPECT_EQ(report.end(), 0);
        messages = report.warnings;
        check(folder / "out.pdf");
        return rawTextOf(folder / "out.pdf");
    }
    /// Why the layout can't be printed with.
    std::string refusal(const std::string& svg) {
        EXPECT_EQ(printed(svg), "");
        return messages.empty() ? "" : messages[0];
    }
    std::string page() const { return readFile(folder / "out.pdf"); }

    TemporaryFolder folder;
    std::filesystem::path logo;
    std::vector<std::string> messages;
};

TEST_F(SharedFiles, ADrawingAndItsStylePrintAsIfTheyStoodInTheLayout) {
    EXPECT_THAT(printed(sheet(kImport, picture())), HasSubstr("Kopf 7"));
    const auto shared = page();
    printed(sheet("text { font-family: 'Liberation Sans'; font-size: 3px } .rot { fill: #ff0000 }",
                  "<text class='rot' x='11' y='25'>Kopf {{Nr}}</text>"));
    EXPECT_EQ(page(), shared);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(SharedFiles, TheLayoutsOwnFolderGoesFirst) {
    writeFile(own() / "kopf.svg", head("<text x='1' y='5'>Eigener {{Nr}}</text>"));
    EXPECT_THAT(printed(sheet(kImport, picture())), AllOf(HasSubstr("Eigener 7"), Not(HasSubstr("Kopf"))));
}

TEST_F(SharedFiles, TheLayoutsOwnRulesGoFirst) {
    writeFile(behind() / "kopf.svg",
              head("<style>" + std::string(kImport) + "</style><text class='rot' x='1' y='5'>Kopf {{Nr}}</text>"));
    printed(sheet(std::string(kImport) + " .rot { fill: #0000ff }", picture()));
    const auto changed = page();
    printed(sheet("text { font-family: 'Liberation Sans'; font-size: 3px }",
                  "<text x='11' y='25' fill='#0000ff'>Kopf {{Nr}}</text>"));
    EXPECT_EQ(page(), changed);
}

TEST_F(SharedFiles, ADrawingFillsItsPictureAsFarAsItsSidesAllow) {
    writeFile(behind() / "kopf.svg", head("<rect x='0' y='0' width='40' height='10'/>"));
    printed(sheet(kImport, "<image href='kopf.svg' x='10' y='20' width='20' height='20'/>"));
    const auto shared = page();
    printed(sheet(kImport, "<rect x='10' y='27.5' width='20' height='5'/>"));
    EXPECT_EQ(page(), shared);
}

TEST_F(SharedFiles, APictureWithAConditionShowsItsDrawingUnderIt) {
    EXPECT_EQ(printed(sheet(kImport, "<g data-if='Nr = 1'>" + picture() + "</g>")).find("Kopf"), std::string::npos);
}

TEST_F(SharedFiles, NamesOfTwoFilesDoNotMeet) {
    const std::string gradient = "<linearGradient id='g'><stop stop-color='red'/></linearGradient>";
    writeFile(behind() / "kopf.svg",
              head(gradient + "<rect id='r' x='0' y='0' width='9' height='9' fill='url(#g)'/>"));
    printed(sheet(kImport, "<linearGradient id='g'><stop stop-color='blue'/></linearGradient>"
                           "<rect id='r' x='60' y='20' width='9' height='9' fill='url(#g)'/>" +
                               picture()));
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(SharedFiles, WhatIsMissingOrDamagedIsNamed) {
    EXPECT_THAT(refusal(sheet("@import url('still.css');", "")),
                HasSubstr("Liste.svg, Zeile 2: Die Datei „still.css“, die das Layout nennt, fehlt"));
    EXPECT_THAT(refusal(sheet("@import stil.css", "")), HasSubstr("@import wird nicht verstanden"));
    EXPECT_THAT(refusal(sheet(kImport, picture("fuss.svg"))),
                HasSubstr("Die Datei „fuss.svg“, die das Layout nennt, fehlt"));
    EXPECT_THAT(refusal(sheet(kImport, "<image xlink:href='kopf.svg'/>")),
                HasSubstr("width und height des Bildes fehlen"));

    writeFile(behind() / "kopf.svg", "<svg xmlns='http://www.w3.org/2000/svg'>\n<g>");
    EXPECT_THAT(refusal(sheet(kImport, picture())),
                HasSubstr("Liste.svg, „kopf.svg“, Zeile 2: Datei ist kein wohlgeformtes XML"));
    writeFile(behind() / "kopf.svg", "<svg xmlns='http://www.w3.org/2000/svg'/>");
    EXPECT_THAT(refusal(sheet(kImport, picture())),
                HasSubstr("„kopf.svg“ kann nicht eingefügt werden: die Datei hat keine viewBox"));
    writeFile(behind() / "kopf.svg", head("\n<text x='1' y='5'>{{Nr</text>"));
    EXPECT_THAT(refusal(sheet(kImport, picture())),
                HasSubstr("„kopf.svg“, Zeile 2, Ebene „Zeile“, <text>: Platzhalter ohne Ende"));
    writeFile(behind() / "stil.css", "text { fill: red }\n.rot { fill: red\n");
    EXPECT_THAT(refusal(sheet(kImport, "")),
                HasSubstr("Liste.svg, „stil.css“, Zeile 3: geschweifte Klammern passen nicht zusammen"));
    writeFile(behind() / "stil.css", ".rot { fill: rott }");
    printed(sheet(kImport, ""));
    EXPECT_THAT(messages,
                ElementsAre(HasSubstr("Liste.svg, „stil.css“, <style>: „fill: rott“ wird nicht verstanden")));
}

TEST_F(SharedFiles, NothingLeadsOutOfTheFolders) {
    writeFile(folder / "geheim.css", "text { fill: red }");
    writeFile(folder / "geheim.svg", head(""));
    std::filesystem::create_symlink(folder / "geheim.css", own() / "verweis.css");
    for (const std::string name :
         {"../geheim.css", "/etc/geheim.css", "http://example.org/geheim.css", "verweis.css"})
        EXPECT_THAT(refusal(sheet("@import url(\"" + name + "\");", "")),
                    HasSubstr("Verweis nach außen ist nicht erlaubt: " + name));
    EXPECT_THAT(refusal(sheet("", picture("../geheim.svg"))),
                HasSubstr("Verweis nach außen ist nicht erlaubt: ../geheim.svg"));
    writeFile(behind() / "stil.css", "@import url(\"zweiter.css\");");
    EXPECT_THAT(refusal(sheet(kImport, "")),
                HasSubstr("„stil.css“: Verweis nach außen ist nicht erlaubt: @import"));
    writeFile(behind() / "kopf.svg", "<!DOCTYPE svg [<!ENTITY a 'b'>]>" + head(""));
    EXPECT_THAT(refusal(sheet("", picture())), HasSubstr("Entitäten"));
    writeFile(behind() / "kopf.svg", head("<script/>"));
    EXPECT_THAT(refusal(sheet("", picture())), HasSubstr("„kopf.svg“, Zeile 1: Skripte sind nicht erlaubt"));
    writeFile(behind() / "kopf.svg", head("<image href='kopf.svg' width='1' height='1'/>"));
    EXPECT_THAT(refusal(sheet("", picture())), HasSubstr("fügt keine weitere ein"));
}

TEST_F(SharedFiles, TheLogoComesIntoItsRectangle) {
    const auto svg = sheet("", "<rect class='logo' x='10' y='20' width='20' height='10' fill='none'/>");
    printed(svg);
    EXPECT_THAT(page(), Not(HasSubstr("/Subtype /Image")));
    const auto without = page();
    logo = folder / "logo.png";
    EXPECT_THAT(refusal(svg), AllOf(HasSubstr("Das Logo „" + logo.string() + "“ kann nicht gelesen werden")));
    writeFile(logo, "kein Bild");
    EXPECT_THAT(refusal(svg), HasSubstr("logo.png“ ist weder PNG noch JPEG"));
    // One red pixel.
    std::string png;
    for (const char* digits = "89504e470d0a1a0a0000000d4948445200000001000000010802000000907753de0000000c4944415478"
                              "9c63f8cfc0000003010100c9fe92ef0000000049454e44ae426082";
         *digits != 0; digits += 2)
        png += static_cast<char>(std::stoi(std::string(digits, 2), nullptr, 16));
    writeFile(logo, png);
    printed(svg);
    EXPECT_NE(page(), without);
    EXPECT_THAT(messages, IsEmpty());
    printed(sheet("", ""));
    EXPECT_THAT(messages, ElementsAre(HasSubstr("kein Platz für das Logo (ein Rechteck der Klasse „logo“)")));
}

TEST(ShippedDrawings, RepeatTheRulesOfTheStyle) {
    const auto style = readFile(KVT_LAYOUTS "/stil.css");
    for (const std::string name : {"absender", "kontakt", "fuss"}) {
        const auto svg = readFile(KVT_LAYOUTS "/" + name + ".svg");
        const auto begin = svg.find("<style class=\"sample\">\n") + 23;
        std::istringstream rules(svg.substr(begin, svg.find("</style>", begin) - begin));
        int count = 0;
        for (std::string rule; std::getline(rules >> std::ws, rule); ++count)
            EXPECT_THAT(style, HasSubstr(rule + "\n")) << name;
        EXPECT_GE(count, 3) << name;
    }
}

TEST_F(SharedFiles, ChartsTakeTheColoursOfClasses) {
    const auto chart = [](const std::string& colors) {
        return "<g class='chart' data-chart='bars' data-series='Nr' data-colors='" + colors +
               "' font-family='Liberation Sans' font-size='3px'><rect x='5' y='20' width='60' height='25'/></g>";
    };
    printed(sheet(kImport, chart("rot")));
    const auto byClass = page();
    printed(sheet(kImport, chart("#ff0000")));
    EXPECT_EQ(page(), byClass);
    EXPECT_THAT(refusal(sheet(kImport, chart("rott"))), HasSubstr("Ungültige Farbe „rott“"));
}

} // namespace
} // namespace kvtdruck::druckwerk
