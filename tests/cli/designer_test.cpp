#include "cli/program_fixture.h"

#include <gmock/gmock.h>

#include <csignal>

namespace kvtdruck::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

/// A stand-in for Inkscape: it keeps what it was opened on and then does what the test asks of it.
class DesignerTest : public ProgramTest {
  protected:
    DesignerTest() { environment["DISPLAY"] = ":0"; }
    void installDesigner(const std::string& work) const {
        writeScript(folder / "bin" / "inkscape",
                    "for file; do :; done\ncp \"$file\" " + (folder / "opened.svg").string() + "\n" + work);
    }
    Outcome design(const std::string& list, const std::vector<std::string>& more = {}) const {
        return run(command("gestalten", list, more), environment);
    }
    std::string opened() const { return readFile(folder / "opened.svg"); }
    std::filesystem::path layout(const std::string& list) const { return layouts() / (list + ".svg"); }
};

TEST_F(DesignerTest, ShowsVariablesAndFieldsBesideThePage) {
    installDesigner("");
    const auto outcome = design("Umsatz");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(opened(), HasSubstr("inkscape:label=\"Feldliste\""));
    EXPECT_THAT(opened(), HasSubstr(">{{FnrName1}}</text>"));
    EXPECT_THAT(opened(), HasSubstr(">Müller &amp; Söhne GmbH · Firma: Name</text>"));
    EXPECT_THAT(opened(), HasSubstr(">{{IUmsatzDM_12|#.##0,00}}</text>"));
    EXPECT_THAT(opened(), ::testing::ContainsRegex(">[0-9,]+ · Umsatz Ist, Dezember</text>"));
}

TEST_F(DesignerTest, ShowsWhatTheLayoutPrints) {
    installDesigner("");
    EXPECT_EQ(design("Umsatz", {"--jahr", "2023"}).exitCode, 0);
    EXPECT_THAT(opened(), HasSubstr(">Jahr 2023</text>"));
    EXPECT_THAT(opened(), Not(HasSubstr(">2019</text>"))) << "what the installed one shows";
    EXPECT_FALSE(std::filesystem::exists(layout("Umsatz")));
}

TEST_F(DesignerTest, WhatLayoutsShareLiesBesideTheOneThatIsOpen) {
    installDesigner("ls \"$(dirname \"$file\")\" > " + (folder / "beside").string());
    EXPECT_EQ(design("Umsatz").exitCode, 0);
    EXPECT_THAT(readFile(folder / "beside"), AllOf(HasSubstr("absender.svg\n"), HasSubstr("stil.css\n")));
    EXPECT_FALSE(std::filesystem::exists(layouts() / "stil.css"));

    installDesigner("echo '.titel { fill: red; }' >> \"$(dirname \"$file\")/stil.css\"");
    EXPECT_EQ(design("Umsatz").exitCode, 0);
    EXPECT_THAT(readFile(layouts() / "stil.css"), HasSubstr("fill: red")) << "the user's own from now on";
    EXPECT_FALSE(std::filesystem::exists(layouts() / "absender.svg"));
}

TEST_F(DesignerTest, SamplesAreRefreshedWithoutOpeningTheLayout) {
    environment["DISPLAY"] = "";
    std::filesystem::create_directories(layouts());
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/docs/beispiele/GemeinK.svg", layout("GemeinK"));
    const auto before = readFile(layout("GemeinK"));
    const auto outcome = design("GemeinK", {"--jahr", "2024", "--beispielwerte"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(readFile(layout("GemeinK")), HasSubstr(">264.610</text>"));
    EXPECT_TRUE(std::filesystem::exists(layouts() / "Frueher"));
    EXPECT_EQ(run(command("pruefen", "GemeinK"), environment).errors, "");
    EXPECT_EQ(run({kProgram, "layouts", "GemeinK", "--zurück"}, environment).exitCode, 0);
    EXPECT_EQ(readFile(layout("GemeinK")), before);
}

TEST_F(DesignerTest, SamplesOfADamagedLayoutAreRefusedWithWhatIsWrong) {
    std::filesystem::create_directories(layouts());
    for (const auto& [damage, message] :
         {std::pair("{{=1+*", "1+*"), std::pair("<text>", "kein wohlgeformtes XML")}) {
        auto text = readFile(KVT_SOURCE_FOLDER "/docs/beispiele/GemeinK.svg");
        text.insert(text.find("{{Bezeichnung}}"), damage);
        writeFile(layout("GemeinK"), text);
        const auto outcome = design("GemeinK", {"--jahr", "2024", "--beispielwerte"});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.errors, HasSubstr(message));
        EXPECT_EQ(readFile(layout("GemeinK")), text);
    }
}

TEST_F(DesignerTest, ADamagedLayoutIsOpenedAsItIs) {
    installDesigner("");
    std::filesystem::create_directories(layouts());
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/docs/beispiele/GemeinK.svg", layout("GemeinK"));
    auto text = readFile(layout("GemeinK"));
    text.insert(text.find("{{Bezeichnung}}") + 2, "=1+*");
    writeFile(layout("GemeinK"), text);
    EXPECT_EQ(design("GemeinK", {"--jahr", "2024"}).exitCode, 1);
    EXPECT_THAT(opened(), HasSubstr("{{=1+*Bezeichnung}}"));
}

TEST_F(DesignerTest, WithoutADisplayTheUserLearnsWhatIsMissing) {
    environment["DISPLAY"] = environment["WAYLAND_DISPLAY"] = "";
    installDesigner("");
    const auto outcome = design("Umsatz");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Zum Gestalten wird eine grafische Oberfläche gebraucht"));
    EXPECT_EQ(opened(), "");
}

TEST_F(DesignerTest, ALayoutThatWasNotSavedStaysAsItWas) {
    installDesigner("");
    design("Umsatz");
    EXPECT_THAT(opened(), HasSubstr("{{Ueberschrift}}")) << "the installed one";
    EXPECT_FALSE(std::filesystem::exists(layout("Umsatz")));
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/layouts/KalkKo.svg", layout("Umsatz"));
    design("Umsatz");
    EXPECT_EQ(readFile(layout("Umsatz")), readFile(KVT_SOURCE_FOLDER "/layouts/KalkKo.svg"));
}

TEST_F(DesignerTest, ASavedLayoutLosesTheFieldListOnly) {
    installDesigner("sed -i 's/<\\/svg>/<!-- gespeichert --><\\/svg>/' \"$file\"");
    EXPECT_EQ(design("Umsatz").exitCode, 0);
    EXPECT_THAT(readFile(layout("Umsatz")), HasSubstr("<!-- gespeichert -->"));
    EXPECT_THAT(readFile(layout("Umsatz")), Not(HasSubstr("Feldliste")));
}

TEST_F(DesignerTest, WhatTheUserLeavesInTheFieldListIsKept) {
    // One text of the list is moved, one copied onto the page's layers, and something is drawn into the list.
    installDesigner("sed -i -e 's/x=\"[0-9.]*\" y=\"6\"/x=\"33\" y=\"44\"/' -e "
                    "'s/\\(inkscape:label=\"Feldliste\">\\)/\\1<rect id=\"neu\"\\/>/' \"$file\"");
    const auto outcome = design("Umsatz");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr("liegen jetzt in der Ebene „Hintergrund“"));
    const auto saved = readFile(layout("Umsatz"));
    EXPECT_THAT(saved, HasSubstr("inkscape:label=\"Hintergrund\"><rect id=\"neu\"/>"));
    EXPECT_THAT(saved, HasSubstr("<text x=\"33\" y=\"44\""));
    EXPECT_THAT(saved, Not(HasSubstr("feldliste")));
    EXPECT_THAT(saved, Not(HasSubstr("Feldliste")));
}

TEST_F(DesignerTest, AMissingLayoutBeginsAsTheGeneratedOne) {
    installDesigner("");
    const auto program = folder / "allein" / "bin" / "kvtdruck";
    std::filesystem::create_directories(program.parent_path());
    std::filesystem::copy_file(kProgram, program); // without shipped layouts beside it
    auto arguments = command("gestalten", "Umsatz");
    arguments[0] = program.string();

    EXPECT_EQ(run(arguments, environment).exitCode, 0);
    EXPECT_THAT(opened(), HasSubstr("{{IUmsatzDM_01"));
    EXPECT_FALSE(std::filesystem::exists(layout("Umsatz"))) << "nothing was saved";

    installDesigner("sed -i 's/<\\/svg>/<!-- gespeichert --><\\/svg>/' \"$file\"");
    EXPECT_EQ(run(arguments, environment).exitCode, 0);
    EXPECT_THAT(readFile(layout("Umsatz")), HasSubstr("<!-- gespeichert -->"));
}

TEST_F(DesignerTest, TellsWhatIsWrongWithASavedLayout) {
    installDesigner("sed -i 's/{{Ueberschrift}}/{{Ueberschrift/' \"$file\"");
    const auto outcome = design("Umsatz");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Platzhalter ohne Ende"));
}

TEST_F(DesignerTest, TheGuidesOwnPageIsInOrderAndPrints) {
    std::filesystem::create_directories(layouts());
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/docs/beispiele/GemeinK.svg", layout("GemeinK"));
    const auto check = run(command("pruefen", "GemeinK"), environment);
    EXPECT_EQ(check.errors, "");
    EXPECT_THAT(check.output, HasSubstr("ist in Ordnung"));
    const auto file = (folder / "seite.pdf").string();
    const auto outcome = run(command("drucken", "GemeinK", {"--jahr", "2024", "--ausgabe", file}), environment);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    const auto text = run({"pdftotext", "-layout", file, "-"}).output;
    EXPECT_THAT(text, HasSubstr("Seite 1 von 1"));
    EXPECT_THAT(text, ::testing::ContainsRegex("Summe +264\\.610 +263\\.547"));
}

TEST_F(DesignerTest, WhatIsCalledFromWithinAsksAboutTheSameData) {
    environment["KVTDRUCK_VERBINDUNG"] = "Driver=none";
    installDesigner(std::string(kProgram) + " felder Umsatz > " + output("fields") + "\n");
    const auto outcome = design("Umsatz");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(readFile(output("fields")), HasSubstr("Müller & Söhne GmbH"));
}

TEST_F(DesignerTest, CtrlCEndsTheDesignerAndKeepsWhatWasSaved) {
    installDesigner("sed -i 's/<\\/svg>/<!-- gespeichert --><\\/svg>/' \"$file\"\ntouch " + output("saved") +
                    "\nwhile :; do sleep 0.05; done");
    Program program(command("gestalten", "Umsatz"), environment);
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(output("saved")); }));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().exitCode, 130);
    EXPECT_THAT(readFile(layout("Umsatz")), HasSubstr("<!-- gespeichert -->"));
    const std::filesystem::directory_iterator files(layouts());
    EXPECT_EQ(std::count_if(begin(files), end(files), [](const auto& entry) { return entry.is_regular_file(); }), 1)
        << "the designer's copy is gone";
}

TEST_F(DesignerTest, AFailingOrMissingDesignerIsAnError) {
    installDesigner("exit 3");
    const auto failed = design("Umsatz");
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_THAT(failed.errors, HasSubstr("Das Zeichenprogramm Inkscape wurde mit einem Fehler beendet."));
    EXPECT_FALSE(std::filesystem::exists(layout("Umsatz")));

    environment["PATH"] = "/nirgends";
    const auto missing = design("Umsatz");
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_THAT(missing.errors, HasSubstr("Das Zeichenprogramm Inkscape ist nicht installiert."));
    EXPECT_FALSE(std::filesystem::exists(layout("Umsatz")));
}

} // namespace
} // namespace kvtdruck::testing
