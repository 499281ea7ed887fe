// What users do with their own data: a database is checked, tables are described, CSV files are read in.
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

#include <csignal>

namespace kvtdruck::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class OwnData : public ProgramTest {
  protected:
    Outcome check() const { return kvtdruck({"datenbank", "pruefen", "--datenbank", database()}); }
    std::string file(const std::string& name, const std::string& text) const {
        writeFile(folder / name, text);
        return (folder / name).string();
    }
    Outcome readIn(const std::string& table, const std::string& text, std::vector<std::string> more = {}) const {
        std::vector<std::string> words{"einlesen", table, file("neu.csv", text), "--datenbank", database()};
        words.insert(words.end(), more.begin(), more.end());
        return kvtdruck(words);
    }
    std::string query(const std::string& sql) const { return run({"sqlite3", database(), sql}).output; }
};

TEST_F(OwnData, TheSampleCompanyIsInOrder) {
    const auto outcome = check();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output << outcome.errors;
    EXPECT_THAT(outcome.output, Not(HasSubstr("Fehler")));
    EXPECT_THAT(outcome.output, Not(HasSubstr("nicht druckbar")));
    EXPECT_THAT(outcome.output, HasSubstr("  Bilanz              druckbar mit --werte\n"));
}

TEST_F(OwnData, EverythingThatIsWrongIsToldAtOnce) {
    execute("PRAGMA foreign_keys = OFF; DROP TABLE kosten; ALTER TABLE material DROP COLUMN iummatdm_12;"
            "ALTER TABLE material DROP COLUMN sujmatdm;"
            "UPDATE umsatz SET iumsatzdm_03 = 'viel' WHERE jahr = 2024; UPDATE umsatz SET sumsatzdm = 'x';"
            "UPDATE konten SET kontenart = 3 WHERE vkonto = 4210;"
            "UPDATE mitarbeiter SET geburtsdatum = '17.4.1968' WHERE nummer = 1;"
            "DELETE FROM firma_jahre WHERE jahr = 2024;"
            "DELETE FROM mitarbeiter_jahre WHERE nummer = 5 AND fjahr = 2024;");
    const auto outcome = check();
    EXPECT_EQ(outcome.exitCode, 1);
    for (const std::string text :
         {"  kosten              fehlt\n", "  KalkKo              nicht druckbar: kosten fehlt\n",
          "Fehler: Es fehlen die Spalten sujmatdm, iummatdm_12.\n", "nicht druckbar: material ist fehlerhaft\n",
          "„iumsatzdm_03“ enthält „viel“; das ist keine Zahl", "„sumsatzdm“ enthält „x“; das ist keine Zahl",
          "haben eine andere kontenart als 1", "„geburtsdatum“ enthält „17.4.1968“; das ist kein Datum",
          "  Firma               druckbar\n", "Firma 1 hat keine Daten für 2024.",
          "13 Zeilen haben keine in mitarbeiter_jahre, zu der sie gehören"})
        EXPECT_THAT(outcome.output, HasSubstr(text));
}

TEST_F(OwnData, KeysMayBeTextsThatAreNumbers) {
    execute(
        "ALTER TABLE konten RENAME TO konten_alt;"
        "CREATE VIEW konten AS SELECT CAST(CAST(fnr AS INTEGER) AS TEXT) AS fnr,"
        " CAST(CAST(fjahr AS INTEGER) AS TEXT) AS fjahr, CAST(CAST(vkonto AS INTEGER) AS TEXT) AS vkonto, ekonto,"
        " kontenart, bezeichnung, ktobetrart, jwsoll, jwist," +
        [] {
            std::string months;
            for (const std::string prefix : {"mwsoll_", "mwist_"})
                for (int month = 1; month <= 12; ++month)
                    months +=
                        (months.empty() ? "" : ", ") + prefix + (month < 10 ? "0" : "") + std::to_string(month);
            return months;
        }() +
        " FROM konten_alt;");
    EXPECT_EQ(check().exitCode, 0) << check().output;
    ASSERT_EQ(print("GemeinK", {"--jahr", "2024", "--ausgabe", output("a.csv")}).exitCode, 0);
    std::filesystem::copy_file(kDemoDatabase, database(), std::filesystem::copy_options::overwrite_existing);
    ASSERT_EQ(print("GemeinK", {"--jahr", "2024", "--ausgabe", output("b.csv")}).exitCode, 0);
    EXPECT_EQ(readFile(output("a.csv")), readFile(output("b.csv")));
}

TEST_F(OwnData, TheTemplateOfEachProductIsTakenByIt) {
    const auto empty = output("leer.sqlite");
    const auto made = run({"sqlite3", "-bail", empty}, {}, kvtdruck({"datenbank", "vorlage", "sqlite"}).output);
    EXPECT_EQ(made.exitCode, 0) << made.errors;
    const auto checked = kvtdruck({"datenbank", "pruefen", "--datenbank", empty});
    EXPECT_EQ(checked.exitCode, 0) << checked.output;
    EXPECT_THAT(checked.output, HasSubstr("  umsatz              leer\n"));
    EXPECT_THAT(kvtdruck({"datenbank", "vorlage", "oracle"}).errors,
                HasSubstr("Für „oracle“ gibt es keine Vorlage"));
    EXPECT_THAT(kvtdruck({"datenbank", "prüfn"}).errors, HasSubstr("gemeint ist vielleicht „pruefen“"));
    EXPECT_THAT(kvtdruck({"datenbank"}).errors, HasSubstr("Es fehlt, was zu tun ist"));
}

TEST_F(OwnData, ComesInAsSpreadsheetsWriteIt) {
    const std::string windows = "FNR;fjahr;vkonto;ekonto;kontenart;bezeichnung;jwsoll;-\r\n"
                                "1;2024;4999;4999;1;\"B\xfc"
                                "cher; Zeitschriften\";1.234,50;egal\r\n"
                                "1;2024;4210;4219;1;Miete;9,5;\r\n";
    const auto before = query("SELECT jwist FROM konten WHERE fjahr = 2024 AND vkonto = 4210");
    const auto tried = readIn("konten", windows, {"--probe"});
    EXPECT_EQ(tried.exitCode, 0) << tried.errors;
    EXPECT_EQ(tried.output,
              "konten: 1 Zeile neu, 1 Zeile geändert. Das war eine Probe; an der Datenbank ist nichts geändert.\n");
    EXPECT_EQ(query("SELECT COUNT(*) FROM konten WHERE vkonto = 4999"), "0\n");
    EXPECT_EQ(readIn("konten", windows).output, "konten: 1 Zeile neu, 1 Zeile geändert.\n");
    EXPECT_EQ(query("SELECT bezeichnung, jwsoll FROM konten WHERE vkonto = 4999"),
              "Bücher; Zeitschriften|1234.5\n");
    EXPECT_EQ(query("SELECT jwist FROM konten WHERE fjahr = 2024 AND vkonto = 4210"), before)
        << "a column that the file does not have stays";
}

TEST_F(OwnData, ComesInWholeOrNotAtAll) {
    const auto before = query(".dump");
    const auto outcome = readIn("mitarbeiter_monate", "fnr;nummer;fjahr;monat;ibrutto\n"
                                                      "1;5;2024;1;1.000,00\n"
                                                      "1;5;2024;14;1\n"
                                                      "1;5;2024;2;1.5\n"
                                                      "1;5;2024;1;7\n"
                                                      "1;999;2024;1;7\n"
                                                      ";5;2024;3;7\n"
                                                      "1;5;2024\n");
    EXPECT_EQ(outcome.exitCode, 1);
    for (const std::string text :
         {"Zeile 3, Spalte 4: monat ist eine ganze Zahl von 1 bis 13, nicht „14“.",
          "Zeile 4, Spalte 5: „1.5“ ist keine deutsche Zahl (1.234,5); ibrutto ist eine Zahl.",
          "Zeile 5: Derselbe Schlüssel steht schon in ", "Zeile 6: Es gibt keine Zeile in mitarbeiter_jahre",
          "Zeile 7, Spalte 1: fnr ist ein Schlüssel und darf nicht leer sein.",
          "Zeile 8, Spalte 3: Die Zeile hat 3 statt 5 Spalten.", "Es wurde nichts eingelesen."})
        EXPECT_THAT(outcome.errors, HasSubstr(text));
    EXPECT_EQ(query(".dump"), before);
}

TEST_F(OwnData, CtrlCLeavesTheDatabaseAsItWas) {
    const auto before = query(".dump");
    std::string text = "fnr;fjahr;vkonto;ekonto;kontenart\n";
    for (int account = 0; account < 300'000; ++account)
        text += "1;2030;" + std::to_string(account) + ";" + std::to_string(account) + ";1\n";
    Program program({kProgram, "einlesen", "konten", file("viel.csv", text), "--datenbank", database()});
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(database() + "-journal"); }))
        << "rows are being written";
    program.signal(SIGINT);
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 130) << outcome.errors << outcome.output;
    EXPECT_EQ(query(".dump"), before);
}

TEST_F(OwnData, ADatabaseBeginsWithAFile) {
    const auto fresh = output("neu.sqlite");
    const auto company = file("firma.csv", "fnr;name1;ort;plz;waehrung\n3;Grün;Leipzig;04109;EUR\n");
    EXPECT_THAT(kvtdruck({"einlesen", "firma", company, "-d", fresh}).errors, HasSubstr("--anlegen legt sie an"));
    EXPECT_EQ(kvtdruck({"einlesen", "firma", company, "-d", fresh, "--anlegen", "--probe"}).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(fresh));
    const auto wrong = file("falsch.csv", "fnr;name1\nx;Grün\n");
    EXPECT_EQ(kvtdruck({"einlesen", "firma", wrong, "-d", fresh, "--anlegen"}).exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(fresh)) << "nothing came in";
    ASSERT_EQ(kvtdruck({"einlesen", "firma", company, "-d", fresh, "--anlegen"}).exitCode, 0);
    const auto turnover = file("umsatz.csv", "fnr;jahr;iumsatzdm;iumsatzdm_01\n3;2024;10;10\n");
    ASSERT_EQ(kvtdruck({"einlesen", "umsatz", turnover, "-d", fresh}).exitCode, 0);
    const auto printed =
        kvtdruck({"drucken", "Umsatz", "-d", fresh, "-f", "3", "-j", "2024", "-o", output("u.pdf")});
    EXPECT_EQ(printed.exitCode, 0) << printed.errors;
    EXPECT_THAT(kvtdruck({"datenbank", "pruefen", "-d", fresh}).output,
                HasSubstr("  Umsatz              druckbar\n"));
}

TEST_F(OwnData, WrongHeadingsAreTold) {
    EXPECT_THAT(readIn("konto", "fnr\n1\n").errors, HasSubstr("Die Tabelle „konto“ gibt es nicht – gemeint ist "
                                                              "vielleicht „konten“"));
    EXPECT_THAT(readIn("umsatz", "fnr;jahr;umsaz\n1;2024;1\n").errors,
                HasSubstr("Spalte 3: Die Tabelle umsatz hat keine Spalte „umsaz“"));
    EXPECT_THAT(readIn("umsatz", "fnr;iumsatzdm\n1;1\n").errors, HasSubstr("Es fehlt die Schlüsselspalte „jahr“."));
    EXPECT_THAT(readIn("umsatz", "").errors, HasSubstr("Die Datei ist leer."));
}

TEST_F(OwnData, DamagedLettersAreTold) {
    EXPECT_THAT(readIn("firma", "fnr;name1\n1;Gr\xc3\xbcn und Wei\xdf\n").errors,
                HasSubstr("Zeile 2, Spalte 2: Das Zeichen ist kein UTF-8"));
}

} // namespace
} // namespace kvtdruck::testing
