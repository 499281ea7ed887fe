// Which layouts are the user's own, and the way back from them.
#include "cli/layout_difference.h"
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

namespace kvtdruck::testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kInstalled = KVT_SOURCE_FOLDER "/layouts/Umsatz.svg";

class Layouts : public ProgramTest {
  protected:
    std::filesystem::path own() const { return layouts() / "Umsatz.svg"; }
    Outcome layoutsCommand(std::vector<std::string> more) const {
        more.insert(more.begin(), "layouts");
        return kvtdruck(more);
    }
    /// Makes the user's own layout of the installed one with another title.
    void changeTitle(const std::string& title) const {
        std::filesystem::create_directories(layouts());
        auto text = readFile(kInstalled);
        const std::string placeholder = " inkscape:label=\"{{Ueberschrift}}\"";
        const std::string shown = ">Umsatz</text>";
        text.erase(text.find(placeholder), placeholder.size());
        text.replace(text.find(shown), shown.size(), ">" + title + "</text>");
        writeFile(own(), text);
    }
    std::string printed() const {
        EXPECT_EQ(print("Umsatz", {"-j", "2024", "-o", output("l.pdf")}).exitCode, 0);
        return run({"pdftotext", output("l.pdf"), "-"}).output;
    }
};

TEST_F(Layouts, InstalledOnesStayWhereTheyAreAndChangedOnesGoFirst) {
    printed();
    EXPECT_FALSE(std::filesystem::exists(own()));
    changeTitle("Mein Titel");
    EXPECT_THAT(printed(), HasSubstr("Mein Titel"));
}

TEST_F(Layouts, TheLogoIsThatOfTheCompanyBesideTheDatabase) {
    const auto pictures = [&](const std::vector<std::string>& more = {}) {
        std::vector<std::string> options = {"-j", "2024", "-o", output("l.pdf")};
        options.insert(options.end(), more.begin(), more.end());
        EXPECT_EQ(print("Umsatz", options).exitCode, 0);
        return run({"pdfimages", "-list", output("l.pdf")}).output;
    };
    const std::filesystem::path logo = KVT_SOURCE_FOLDER "/docs/pictures/turnover.png";
    EXPECT_THAT(pictures(), Not(HasSubstr(" image ")));
    std::filesystem::copy_file(logo, folder / "logo-2.png");
    EXPECT_THAT(pictures(), Not(HasSubstr(" image "))) << "another company's";
    std::filesystem::copy_file(logo, folder / "logo-1.png");
    EXPECT_THAT(pictures(), HasSubstr(" image "));
    std::filesystem::remove(folder / "logo-1.png");
    EXPECT_THAT(pictures({"--logo", logo.string()}), HasSubstr(" image "));
    EXPECT_THAT(print("Umsatz", {"-j", "2024", "-o", output("l.pdf"), "--logo", "fehlt.png"}).errors,
                HasSubstr("--logo: Die Datei fehlt.png gibt es nicht."));
}

TEST_F(Layouts, AreListedWithWhatDiffers) {
    changeTitle("Mein Titel");
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/layouts/Firma.svg", layouts() / "Firma.svg");
    const auto all = layoutsCommand({});
    EXPECT_EQ(all.exitCode, 0) << all.errors;
    EXPECT_THAT(all.output,
                AllOf(StartsWith("Umsatz    eigenes, 2 Unterschiede\n"), HasSubstr("\nKalkKo    mitgeliefert\n"),
                      HasSubstr("\nFirma     eigenes, gleicht dem mitgelieferten\n")));
    const auto one = layoutsCommand({"umsatz"}).output;
    EXPECT_THAT(one, AllOf(StartsWith("Umsatz: eigenes, 2 Unterschiede\n" + own().string() + "\n"),
                           HasSubstr("  - Zeile: text class=\"titel\""), HasSubstr(" „{{Ueberschrift}}“\n"),
                           HasSubstr("  + Zeile: text class=\"titel\""), HasSubstr(" „Mein Titel“\n")));
}

TEST_F(Layouts, TheInstalledOneAndAnEarlierOneComeBack) {
    changeTitle("Mein Titel");
    const auto mine = readFile(own());
    const auto returned = layoutsCommand({"Umsatz", "--mitgeliefert"});
    EXPECT_THAT(returned.output,
                AllOf(StartsWith("Umsatz: mitgeliefert\n"), HasSubstr("früher: " + layouts().string())));
    EXPECT_THAT(printed(), Not(HasSubstr("Mein Titel")));
    EXPECT_EQ(layoutsCommand({"Umsatz", "--mitgeliefert"}).errors,
              "Fehler: Die Liste Umsatz hat kein eigenes Layout.\nHilfe gibt „kvtdruck --hilfe“.\n");
    EXPECT_EQ(layoutsCommand({"Umsatz", "--zurück"}).exitCode, 0);
    EXPECT_EQ(readFile(own()), mine);
    EXPECT_EQ(layoutsCommand({"Umsatz", "--zurueck"}).errors,
              "Fehler: Die Liste Umsatz hat kein früheres Layout.\nHilfe gibt „kvtdruck --hilfe“.\n");
}

TEST_F(Layouts, TakingBackTwiceIsWhereItBegan) {
    changeTitle("Erster");
    ASSERT_EQ(layoutsCommand({"Umsatz", "--mitgeliefert"}).exitCode, 0);
    changeTitle("Zweiter");
    for (const char* title : {"Erster", "Zweiter", "Erster"}) {
        ASSERT_EQ(layoutsCommand({"Umsatz", "--zurueck"}).exitCode, 0);
        EXPECT_THAT(printed(), HasSubstr(title));
    }
}

TEST_F(Layouts, WhatTheDesignerReplacesIsKept) {
    changeTitle("Vorher");
    environment["DISPLAY"] = ":0";
    writeScript(folder / "bin" / "inkscape", "for file; do :; done\nsed -i 's/Vorher/Nachher/' \"$file\"\n");
    ASSERT_EQ(run(command("gestalten", "Umsatz"), environment).exitCode, 0);
    EXPECT_THAT(printed(), HasSubstr("Nachher"));
    ASSERT_EQ(layoutsCommand({"Umsatz", "--zurueck"}).exitCode, 0);
    EXPECT_THAT(printed(), HasSubstr("Vorher"));
}

TEST(LayoutDifference, IsWhatTheAuthorSees) {
    const std::string head =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" "
        "xmlns:i=\"http://www.inkscape.org/namespaces/inkscape\"><style>.a { x: 1 } .b { y: 2 }</style>";
    const auto first = head + "<rect x=\"1\" y=\"2\"/><text>Ein  Wort</text></svg>";
    EXPECT_THAT(cli::differencesOf(first, head +
                                              "\n<rect y=\"2\" id=\"r1\" i:label=\"l\" x=\"1\"/>\n<text><tspan>Ein "
                                              "Wort</tspan></text></svg>"),
                IsEmpty());
    EXPECT_THAT(cli::differencesOf(first, head + "<text>Zwei</text><rect x=\"1\" y=\"2\"/></svg>"),
                ElementsAre("- text „Ein Wort“", "+ text „Zwei“"));
    EXPECT_THAT(cli::differencesOf(first, "kein SVG"), ::testing::Contains("+ kein SVG"));
}

} // namespace
} // namespace kvtdruck::testing
