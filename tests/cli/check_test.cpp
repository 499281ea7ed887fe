// kvtdruck pruefen: what is said about layouts, on real values and without any.
#include "cli/program_fixture.h"
#include "druckwerk/layout_text.h"

#include <gmock/gmock.h>

namespace kvtdruck::testing {
namespace {

using druckwerk::testing::field;
using druckwerk::testing::layer;
using druckwerk::testing::page;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int kReports = 18;

class CheckTest : public ProgramTest {
  protected:
    CheckTest() { kvtdruck({"pruefen", "Umsatz"}); } // copies the shipped layouts

    void layout(const std::string& list, const std::string& svg) const {
        writeFile(layouts() / (list + ".svg"), svg);
    }
    Outcome check(const std::string& list, const std::vector<std::string>& more = {}) const {
        return run(command("pruefen", list, more), environment);
    }
    static std::size_t count(const std::string& text, const std::string& part) {
        std::size_t found = 0;
        for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++found;
        return found;
    }
};

TEST_F(CheckTest, EveryShippedLayoutIsInOrderOnTheSampleCompany) {
    const std::string values = KVT_SOURCE_FOLDER "/demo/werte";
    const auto outcome = kvtdruck({"pruefen", "--datenbank", database(), "--firma", "1", "--werte", values});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(count(outcome.output, " ist in Ordnung."), kReports);
}

TEST_F(CheckTest, ACompanyWithoutDataCanNotShowThatALayoutIsInOrder) {
    const auto outcome = kvtdruck({"pruefen", "Umsatz", "--datenbank", database(), "--firma", "2"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Es sind keine Daten für den Ausdruck vorhanden."));
    EXPECT_THAT(outcome.output, Not(HasSubstr("in Ordnung")));
}

TEST_F(CheckTest, WithoutListAndDatabaseAllAreChecked) {
    const auto outcome = kvtdruck({"pruefen"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(count(outcome.output, " ist in Ordnung."), kReports);
}

TEST_F(CheckTest, OneOfAllThatIsNotInOrderIsNamed) {
    layout("KalkKo", page(layer("Zeilen", 20, 10, field(5, 20, 40, "{{Jahr}}"))));
    const auto outcome = kvtdruck({"pruefen"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(count(outcome.output, " ist in Ordnung."), kReports - 1);
    EXPECT_THAT(outcome.errors, HasSubstr("KalkKo: Hinweis: "));
    EXPECT_THAT(outcome.errors, HasSubstr("Nicht in Ordnung (1 von 18):\n  KalkKo\n"));
}

TEST_F(CheckTest, SelectionsNeedADatabase) {
    EXPECT_THAT(kvtdruck({"pruefen", "--jahr", "2024"}).errors, HasSubstr("Es fehlt die Datenbank"));
    EXPECT_THAT(kvtdruck({"pruefen", "--firma", "1"}).errors, HasSubstr("Es fehlt die Datenbank"));
    EXPECT_THAT(kvtdruck({"pruefen", "--datenbank", database()}).errors, HasSubstr("Es fehlt --firma"));
}

/// A layout that only real values show to be wrong, and what is said about it.
struct Seeded {
    std::string zeile; ///< the content of the layer "Zeile", from line 3 of the layout on
    std::string sql;   ///< changes the employee 1 of company 1
    std::string message;
};

TEST_F(CheckTest, WhatOnlyRealValuesShowIsReportedWithLineLayerAndElement) {
    const std::string place = "MitUeber.svg, Zeile 3, Ebene „Zeile“, <g id=\"x\">: ";
    const auto one = [](const std::string& text, double width, const std::string& attributes = "") {
        return field(5, 20, width, text, "id='x' " + attributes);
    };
    const std::string name = "UPDATE mitarbeiter SET name = ";
    const std::vector<Seeded> mistakes = {
        {one("{{Name}}", 20), name + "'Dampfschifffahrtsgesellschafter'",
         place + "Feld ist zu schmal für einen Wert: „Dampfschifffahrtsgesellschafter“ braucht 41,"},
        {one("{{Name}}", 8, "data-fit='shrink'"), name + "'Dampfschifffahrtsgesellschafter'",
         place + "Feld ist zu schmal für einen Wert: „Dampfschifffahrtsgesellschafter“ braucht"},
        {one("{{Nummer|#.##0,00000}}", 10), "UPDATE mitarbeiter SET nummer = 1234567",
         place + "Feld ist zu schmal für einen Wert: „1.234.567,00000“ braucht"},
        {one("{{Nummer|#.##0,00}}", 11), "UPDATE mitarbeiter SET nummer = 12345678",
         place + "Feld ist zu schmal für einen Wert: „12.345.678,00“ braucht"},
        {one("{{Name}}", 20, "data-fit='wrap'"), name + "'ein Name, der gar nicht enden will'",
         place + "Feld ist zu niedrig für einen Wert: „ein Name, der gar nicht enden will“ braucht mehr als 1 "
                 "Zeile"},
        {one("{{Name}}", 60), name + "char(983604)", place + "Zeichen U+F0234 fehlt in allen Schriften"},
        {one("{{Name}}", 60), name + "'مرحبا'", place + "Zeichen, die der Schrift fehlen, werden in „"},
        {one("{{Name|TT.MM.JJJJ}}", 60), name + "'morgen'",
         place + "Der Inhalt von „Name“: „morgen“ ist kein Datum wie"},
        {one("{{Name|0,00}}", 60), name + "'viel'", place + "Der Inhalt von „Name“: „viel“ ist keine Zahl wie"},
        {one("{{Name}}", 60, "data-fit='wrap' data-grow='1'"),
         name + "replace(hex(zeroblob(2000)), '00', 'viele Worte ')",
         "MitUeber.svg, Zeile 3, Ebene „Zeile“, <g>: Zeile ist höher als die Seite"},
        {one("<tspan font-family='Gibt Es Nicht'>{{Name}}</tspan>", 60), name + "'x'",
         place + "Schrift „Gibt Es Nicht“ ist nicht installiert"},
    };
    execute("DELETE FROM mitarbeiter WHERE fnr <> 1 OR nummer <> 1;");
    const std::string footer = layer("Seitenfuß", 95, 5, "");
    for (const auto& mistake : mistakes) {
        layout("MitUeber", page("\n" + layer("Zeile", 20, 10, mistake.zeile) + footer));
        execute("UPDATE mitarbeiter SET nummer = 1, name = 'x';");
        EXPECT_EQ(check("MitUeber").errors.find("zu schmal"), std::string::npos) << "before: " << mistake.message;
        execute(mistake.sql + ";");
        const auto outcome = check("MitUeber");
        EXPECT_THAT(outcome.errors, HasSubstr(mistake.message));
        EXPECT_EQ(outcome.exitCode, 1) << mistake.message;
        EXPECT_THAT(outcome.output, Not(HasSubstr("in Ordnung")));
    }
}

TEST_F(CheckTest, AFieldIsReportedOnceWithTheTextThatNeedsMost) {
    layout("MitUeber", page(layer("Zeile", 20, 10, field(5, 20, 4, "{{Name}}"))));
    const auto outcome = check("MitUeber");
    EXPECT_EQ(count(outcome.errors, "Feld ist zu schmal für "), 1U) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr(" Werte: „"));
}

TEST_F(CheckTest, EveryYearIsPrinted) {
    execute("UPDATE umsatz SET sumsatzdm = 123456789012 WHERE fnr = 1 AND jahr = (SELECT min(jahr) FROM umsatz);");
    layout("Umsatz", page(layer("Zeile", 20, 10, field(5, 20, 12, "{{sUmsatzDM|#.##0,00}}"))));
    EXPECT_THAT(check("Umsatz").errors, HasSubstr("„123.456.789.012,00“"));
}

TEST_F(CheckTest, PrintsIntoNothing) {
    const auto before = previewFiles();
    ASSERT_EQ(check("Umsatz", {"--protokoll", output("protokoll")}).exitCode, 0);
    EXPECT_EQ(previewFiles(), before);
    EXPECT_THAT(readFile(folder / "protokoll"), HasSubstr("LlPrintEnd(0) = 0"));
    EXPECT_FALSE(std::filesystem::exists(folder / "Umsatz.pdf"));
}

TEST_F(CheckTest, NamesThatAreNotPrintedAreToldOnRequestAndAreNoMistake) {
    const auto outcome = check("MitUeber", {"--ungedruckt"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("wird nicht gedruckt"));
    EXPECT_THAT(outcome.output, HasSubstr("ist in Ordnung"));
}

TEST_F(CheckTest, FindsABrokenLayout) {
    layout("Umsatz", "<svg");
    const auto outcome = check("Umsatz");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Umsatz.svg"));
    EXPECT_EQ(count(outcome.errors, "kein wohlgeformtes XML"), 1U) << outcome.errors;
}

} // namespace
} // namespace kvtdruck::testing
