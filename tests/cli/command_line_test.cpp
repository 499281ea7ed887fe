// What the program answers to commands: pages, lists, help, and what is no command.
#include "cli/command_line_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace kvtdruck::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// Printing

TEST_F(CommandLine, PrintsEveryYearOfARangeInOneDocumentAndRecordsTheCalls) {
    const auto outcome =
        print("Umsatz", toPdf({"--von", "2022", "--bis", "2024", "--protokoll", output("protokoll.txt")}));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.output + outcome.errors, "") << "silent without a terminal";
    EXPECT_THAT(run({"pdfinfo", output("l.pdf")}).output, HasSubstr("Pages:           3\n"));
    EXPECT_THAT(pdfText("l.pdf"), AllOf(HasSubstr("Seite 1 von 3"), HasSubstr("Seite 3 von 3")));
    const auto outline = run({"qpdf", "--json", "--json-key=outlines", output("l.pdf")}).output;
    EXPECT_THAT(outline, AllOf(HasSubstr("\"title\": \"2022\""), HasSubstr("\"title\": \"2024\"")));
    const auto record = readFile(output("protokoll.txt"));
    EXPECT_THAT(record, HasSubstr("LlDefineVariableExt(\"FnrName1\", \"Müller & Söhne GmbH\", 268435456) = 0\n"));
    std::size_t at = 0;
    for (const char* year : {"2022", "2023", "2024"})
        for (const auto& call :
             {"LlDefineVariableExt(\"Fuerjahr\", \"" + std::string(year) + "\", 134217728) = 0\n",
              std::string("LlPrintEnd(0) = 0\n")}) {
            at = record.find(call, at);
            ASSERT_NE(at, std::string::npos) << call;
        }
}

struct RangeCase {
    const char* list;
    std::vector<std::string> range;
    std::vector<std::vector<std::string>> singles; ///< the selections of its values, one by one
};

void PrintTo(const RangeCase& range, std::ostream* out) {
    *out << range.list;
}

class EveryRange : public CommandLine, public ::testing::WithParamInterface<RangeCase> {};

TEST_P(EveryRange, HoldsWhatItsValuesHoldOneByOne) {
    ASSERT_EQ(print(GetParam().list, toPdf(GetParam().range)).exitCode, 0);
    ASSERT_EQ(print(GetParam().list, toData("json", GetParam().range)).exitCode, 0);
    const auto withoutPageNumbers = [](const std::string& text) {
        return run({"sed", "s/Seite [0-9]* von [0-9]*//; s/ *$//; s/   */  /g"}, {}, text).output;
    };
    const auto sections = [&] { return run({"jq", "-c", ".abschnitte[]", output("l.json")}).output; };
    const auto pages = withoutPageNumbers(pdfText("l.pdf"));
    const auto data = sections();
    std::string expectedPages;
    std::string expectedData;
    for (const auto& single : GetParam().singles) {
        ASSERT_EQ(print(GetParam().list, toPdf(single)).exitCode, 0);
        expectedPages += withoutPageNumbers(pdfText("l.pdf"));
        ASSERT_EQ(print(GetParam().list, toData("json", single)).exitCode, 0);
        expectedData += sections();
    }
    EXPECT_EQ(pages, expectedPages);
    EXPECT_EQ(data, expectedData);
}

INSTANTIATE_TEST_SUITE_P(
    All, EveryRange,
    ::testing::Values(RangeCase{"Umsatz", {"--bis", "2020"}, {{"--jahr", "2019"}, {"--jahr", "2020"}}},
                      RangeCase{"KalkKo", {"--von", "2024"}, {{"--jahr", "2024"}, {"--jahr", "2025"}}},
                      RangeCase{
                          "MatUeber", {"--von", "2023", "--bis", "2024"}, {{"--jahr", "2023"}, {"--jahr", "2024"}}},
                      RangeCase{"MaStKost",
                                {"--mitarbeiter-von", "5", "--mitarbeiter-bis", "7"},
                                {{"--mitarbeiter-von", "5", "--mitarbeiter-bis", "5"},
                                 {"--mitarbeiter-von", "6", "--mitarbeiter-bis", "6"},
                                 {"--mitarbeiter-von", "7", "--mitarbeiter-bis", "7"}}},
                      RangeCase{"GemeinK",
                                {"--von", "2024", "--bis", "2025", "--monat", "3"},
                                {{"--jahr", "2024", "--monat", "3"}, {"--jahr", "2025", "--monat", "3"}}}),
    [](const auto& test) { return std::string(test.param.list); });

TEST_F(CommandLine, ShowsProgressOnATerminalAndLeavesACleanLine) {
    std::string line;
    for (const auto& argument : command("drucken", "Umsatz", toPdf()))
        line += "'" + argument + "' ";
    const auto outcome = run({"script", "-qec", line, "/dev/null"}, environment);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("Umsatz [ "), ::testing::EndsWith("\r\x1b[K")));
}

TEST_F(CommandLine, SameInputAndPrintDateGiveTheSameBytes) {
    ASSERT_EQ(print("Umsatz", {"--druckdatum", "31.12.2024 08:15", "--ausgabe", output("a.pdf")}).exitCode, 0);
    ASSERT_EQ(print("Umsatz", {"--druckdatum", "2024-12-31T08:15", "--ausgabe", output("b.pdf")}).exitCode, 0);
    EXPECT_FALSE(readFile(output("a.pdf")).empty());
    EXPECT_TRUE(readFile(output("a.pdf")) == readFile(output("b.pdf")));
}

TEST_F(CommandLine, AccountsWithoutAMonthLeaveItsColumnsOut) {
    for (const std::string list : {"GemeinK", "NeutralA"}) {
        const auto outcome = print(list, toPdf({"--jahr", "2024"}));
        EXPECT_EQ(outcome.output + outcome.errors, "") << list;
        auto page = pdfText("l.pdf");
        page.resize(page.find('\f'));
        const auto heading = page.find("Abweichung");
        ASSERT_NE(heading, std::string::npos) << list;
        EXPECT_EQ(page.find("Abweichung", heading + 1), std::string::npos) << page;
    }
}

TEST_F(CommandLine, SomePagesAreAFileOfTheirOwn) {
    ASSERT_EQ(print("Umsatz", toPdf({"--seiten", "2-3,6"})).exitCode, 0);
    EXPECT_EQ(run({"qpdf", "--check", output("l.pdf")}).exitCode, 0);
    EXPECT_THAT(run({"pdfinfo", output("l.pdf")}).output, HasSubstr("Pages:           3\n"));
    EXPECT_THAT(pdfText("l.pdf"), AllOf(HasSubstr("Seite 2 von 8"), HasSubstr("Seite 6 von 8"),
                                        Not(HasSubstr("Seite 1 von 8")), Not(HasSubstr("Seite 7 von 8"))));
    const auto outline = run({"jq", "-c", "[.outlines[] | [.title, .destpageposfrom1]]"}, {},
                             run({"qpdf", "--json", "--json-key=outlines", output("l.pdf")}).output)
                             .output;
    EXPECT_EQ(outline, "[[\"2020\",1],[\"2021\",2],[\"2024\",3]]\n");
    ASSERT_EQ(print("Umsatz", toPdf({"--seiten", "2-3,6", "--druckdatum", "1.1.2025"})).exitCode, 0);
    const auto again = readFile(output("l.pdf"));
    ASSERT_EQ(print("Umsatz", toPdf({"--seiten", "2-3,6", "--druckdatum", "1.1.2025"})).exitCode, 0);
    EXPECT_TRUE(readFile(output("l.pdf")) == again);
    const auto missing = print("Umsatz", toPdf({"--seiten", "20-30"}));
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_THAT(missing.errors, HasSubstr("Das Dokument hat keine der Seiten 20-30, sondern nur 8"));
    EXPECT_TRUE(readFile(output("l.pdf")) == again) << "what was there stays";
}

/// The component passes no year for these: the connection shows the selected ones alone.
TEST_F(CommandLine, YearsOfThePersonnelReportsAreWhatTheConnectionShows) {
    const auto years = [&] {
        return run({"jq", "-r",
                    "[.. | objects | .Fuerjahr? // .Jahr? // empty] | unique | map(tostring) | join(\" \")",
                    output("l.json")})
            .output;
    };
    for (const char* list : {"MaKost", "MaZeit", "MaStKost", "MaStZeit"}) {
        SCOPED_TRACE(list);
        ASSERT_EQ(print(list, toData("json", {"--jahr", "2024"})).exitCode, 0);
        EXPECT_EQ(years(), "2024\n");
        ASSERT_EQ(print(list, toData("json", {"--bis", "2024", "--mitarbeiter-von", "5", "--mitarbeiter-bis", "6"}))
                      .exitCode,
                  0);
        EXPECT_THAT(years(), AllOf(HasSubstr("2024"), Not(HasSubstr("2025"))));
        EXPECT_THAT(print(list, toPdf({"--jahr", "2030"})).errors,
                    HasSubstr("Fehler: Keine Daten für 2030; vorhanden: "));
    }
}

TEST_F(CommandLine, NumbersFollowTheLocale) {
    ASSERT_EQ(print("Umsatz", toData("csv", {"--jahr", "2022", "--locale", "en-US"})).exitCode, 0);
    EXPECT_THAT(readFile(output("l.csv")), AllOf(HasSubstr(";1582810.86;"), Not(HasSubstr(";1582810,86;"))));
}

struct ListCase {
    const char* list;
    std::vector<std::string> selections;
};

void PrintTo(const ListCase& list, std::ostream* out) {
    *out << list.list;
}

class EveryList : public CommandLine, public ::testing::WithParamInterface<ListCase> {
  protected:
    std::vector<std::string> selections() const {
        auto result = GetParam().selections;
        const auto values = std::string(KVT_SOURCE_FOLDER "/demo/werte/") + GetParam().list + ".csv";
        if (std::filesystem::exists(values))
            result.insert(result.end(), {"--werte", values});
        return result;
    }
};

TEST_P(EveryList, PrintsPagesAndData) {
    const auto pages = print(GetParam().list, toPdf(selections()));
    EXPECT_EQ(pages.exitCode, 0) << pages.errors;
    EXPECT_EQ(run({"qpdf", "--check", output("l.pdf")}).exitCode, 0);
    EXPECT_THAT(pdfText("l.pdf"), HasSubstr("Müller & Söhne"));
    for (const char* format : {"csv", "xlsx", "json"}) {
        const auto data = print(GetParam().list, toData(format, selections()));
        EXPECT_EQ(data.exitCode, 0) << format << data.errors;
    }
    const auto json = run({"jq", "-e", ".abschnitte | length > 0"}, {}, readFile(output("l.json")));
    EXPECT_EQ(json.exitCode, 0) << json.errors;
    EXPECT_EQ(run({"unzip", "-tq", output("l.xlsx")}).exitCode, 0);
}

INSTANTIATE_TEST_SUITE_P(All, EveryList,
                         ::testing::Values(ListCase{"Umsatz", {}}, ListCase{"MitUeber", {}},
                                           ListCase{"Firma", {"--von", "2024"}},
                                           ListCase{"GemeinK", {"--jahr", "2025", "--monat", "3"}},
                                           ListCase{"NeutralA", {"--jahr", "2025", "--monat", "3"}},
                                           ListCase{"MaKost", {"--monat-von", "1", "--monat-bis", "6"}},
                                           ListCase{"MaZeit", {}}, ListCase{"MaStKost", {}},
                                           ListCase{"MaStZeit", {"--mitarbeiter-von", "1"}}, ListCase{"KalkKo", {}},
                                           ListCase{"MatUeber", {}}, ListCase{"Bilanz", {}}, ListCase{"BsEMa", {}},
                                           ListCase{"BsEStd", {}}, ListCase{"BsEGes", {}}, ListCase{"KalkW", {}},
                                           ListCase{"WasWenn", {}}, ListCase{"UmsatzHW", {}}),
                         [](const auto& test) { return test.param.list; });

// Listing

TEST_F(CommandLine, ListsReportsAndCompanies) {
    EXPECT_THAT(kvtdruck({"listen"}).output, HasSubstr("\nGemeinK   Gemeinkosten  "));
    EXPECT_THAT(kvtdruck({"listen", "Bilanz"}).output, HasSubstr("Gewinn"));
    const auto companies = kvtdruck({"firmen", "--datenbank", database()});
    EXPECT_EQ(companies.exitCode, 0);
    EXPECT_THAT(companies.output, StartsWith("1\tMüller & Söhne GmbH\tDresden\n"));
}

TEST_F(CommandLine, HelpIsGerman) {
    const auto general = kvtdruck({"--hilfe"});
    EXPECT_EQ(general.exitCode, 0);
    EXPECT_THAT(general.output, AllOf(HasSubstr("Aufruf: kvtdruck [OPTIONEN] BEFEHL"), HasSubstr("Befehle:"),
                                      Not(HasSubstr("Usage")), Not(HasSubstr("Options"))));
    const auto printing = kvtdruck({"drucken", "--help"});
    EXPECT_EQ(printing.exitCode, 0);
    EXPECT_THAT(printing.output,
                AllOf(HasSubstr("--konto-von KONTO"), Not(HasSubstr("REQUIRED")), Not(HasSubstr("Options"))));
    EXPECT_EQ(kvtdruck({"help", "drucken"}).output, printing.output);
    EXPECT_THAT(printing.output, HasSubstr("Beispiele:\n  kvtdruck drucken Umsatz -d "));
}

TEST_F(CommandLine, EveryCommandsHelpHasAnExample) {
    std::istringstream lines(kvtdruck({"--hilfe"}).output);
    std::size_t commands = 0;
    for (std::string line; std::getline(lines, line) && line != "Befehle:";) {
    }
    for (std::string line; std::getline(lines, line) && line.starts_with("  ");) {
        if (line.starts_with("   "))
            continue; // goes on from the line before
        const auto name = line.substr(2, line.find(' ', 2) - 2);
        EXPECT_THAT(kvtdruck({name, "-h"}).output, HasSubstr("\n  kvtdruck " + name + " ")) << name;
        ++commands;
    }
    EXPECT_GE(commands, 7u);
}

TEST_F(CommandLine, HelpIsAsWideAsTheTerminal) {
    environment["COLUMNS"] = "72";
    std::istringstream help(kvtdruck({"drucken", "--hilfe"}).output);
    std::size_t wide = 0;
    for (std::string line; std::getline(help, line) && line != "Beispiele:";)
        wide += std::ranges::count_if(line, [](char c) { return (c & 0xc0) != 0x80; }) > 72 ? 1 : 0;
    EXPECT_EQ(wide, 0u);
}

TEST_F(CommandLine, ListsGoByTheirTitlesAndInAnyCase) {
    const auto byName = kvtdruck({"listen", "MaStKost"}).output;
    EXPECT_THAT(byName, StartsWith("MaStKost: "));
    EXPECT_EQ(kvtdruck({"listen", "mastkost"}).output, byName);
    EXPECT_EQ(kvtdruck({"listen", "Mitarbeiter-Stammblatt-Kosten"}).output, byName);
    EXPECT_THAT(kvtdruck({"listen", "MITARBEITER-ÜBERSICHT"}).output, StartsWith("MitUeber: "));
}

TEST_F(CommandLine, TheEnvironmentPresetsOptionsAndTheCommandLineGoesFirst) {
    environment["KVTDRUCK_DATENBANK"] = database();
    environment["KVTDRUCK_FIRMA"] = "99";
    environment["KVTDRUCK_JAHR"] = "2022";
    EXPECT_EQ(kvtdruck({"drucken", "Umsatz", "-o", output("l.pdf"), "-f", "1", "--von", "2023"}).exitCode, 0);
    EXPECT_THAT(run({"pdfinfo", output("l.pdf")}).output, HasSubstr("Pages:           3\n"));
    EXPECT_THAT(kvtdruck({"drucken", "Umsatz", "-o", output("l.pdf")}).errors, HasSubstr("für die Firma 99"));
    environment["KVTDRUCK_FIRMA"] = "x";
    EXPECT_THAT(kvtdruck({"drucken", "Umsatz"}).errors, HasSubstr("--firma: „x“ ist keine Firmennummer"));
}

TEST_F(CommandLine, TheFormatFollowsTheEnding) {
    ASSERT_EQ(print("Umsatz", {"-o", output("l.xlsx")}).exitCode, 0);
    EXPECT_EQ(run({"unzip", "-tq", output("l.xlsx")}).exitCode, 0);
    ASSERT_EQ(print("Umsatz", {"-o", output("l.JSON")}).exitCode, 0);
    EXPECT_EQ(run({"jq", "-e", ".abschnitte"}, {}, readFile(output("l.JSON"))).exitCode, 0);
}

TEST_F(CommandLine, ListsAndCompaniesAsJson) {
    const auto companies = kvtdruck({"firmen", "--datenbank", database(), "--format", "json"});
    EXPECT_EQ(run({"jq", "-c", ".[0]"}, {}, companies.output).output,
              "{\"nummer\":\"1\",\"name\":\"Müller & Söhne GmbH\",\"ort\":\"Dresden\"}\n");
    const auto lists = kvtdruck({"listen", "--format", "json"});
    EXPECT_EQ(
        run({"jq", "-c", "[length, .[3].name, .[3].auswahl[0].option, .[17].spalten[0].name]"}, {}, lists.output)
            .output,
        "[18,\"GemeinK\",\"--jahr\",\"Jahr\"]\n");
    EXPECT_EQ(run({"jq", "length"}, {}, kvtdruck({"listen", "Bilanz", "--format", "json"}).output).output, "1\n");
}

// Wrong usage

struct UsageCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* message;
};

void PrintTo(const UsageCase& usage, std::ostream* out) {
    *out << usage.name;
}

class WrongUsage : public ProgramTest, public ::testing::WithParamInterface<UsageCase> {};

TEST_P(WrongUsage, IsSaidInGermanWithExitCode2) {
    const auto outcome = kvtdruck(GetParam().arguments);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "Fehler: " + std::string(GetParam().message) + "\nHilfe gibt „kvtdruck --hilfe“.\n");
}

std::vector<std::string> printing(std::vector<std::string> more) {
    more.insert(more.begin(), {"drucken", "Umsatz", "--datenbank", "d", "--firma", "1"});
    return more;
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongUsage,
    ::testing::Values(
        UsageCase{"NoCommand",
                  {},
                  "Es fehlt der Befehl: drucken, vorschau, gestalten, pruefen, felder, listen, firmen, datenbank, "
                  "einlesen oder layouts."},
        UsageCase{"OptionsInPlaceOfACommand",
                  {"-d", "x", "-f", "1", "-o", "y"},
                  "Es fehlt der Befehl: drucken, vorschau, gestalten, pruefen, felder, listen, firmen, datenbank, "
                  "einlesen oder layouts."},
        UsageCase{"OptionsWithoutAList",
                  {"drucken", "-d", "x", "-f", "1", "-o", "y"},
                  "Es fehlt die Liste; alle Listen nennt „kvtdruck listen“."},
        UsageCase{"NoList", {"drucken"}, "Es fehlt die Liste; alle Listen nennt „kvtdruck listen“."},
        UsageCase{"NoCompany",
                  {"drucken", "Umsatz", "-d", "d"},
                  "Es fehlt --firma NUMMER; die Firmen nennt „kvtdruck firmen“."},
        UsageCase{"UnknownCommand",
                  {"druken", "Umsatz"},
                  "Unbekannter Befehl „druken“ – gemeint ist vielleicht „drucken“."},
        UsageCase{"UnknownList",
                  {"drucken", "umsats", "--firma", "1", "--datenbank", "d"},
                  "Die Liste „umsats“ gibt es nicht – gemeint ist vielleicht „Umsatz“; alle Listen nennt „kvtdruck "
                  "listen“."},
        UsageCase{"NoDatabase",
                  {"drucken", "Umsatz", "--firma", "1"},
                  "Es fehlt die Datenbank: --datenbank DATEI oder --verbindung TEXT."},
        UsageCase{"CompanyIsNoNumber",
                  {"drucken", "Umsatz", "-d", "d", "--firma", "eins"},
                  "--firma: „eins“ ist keine Firmennummer; möglich sind 7, mehrere wie 1,7,9 und alle."},
        UsageCase{"UnknownOption", printing({"--unfug"}), "Unbekannte Angabe „--unfug“."},
        UsageCase{"MistypedOption", printing({"--jahre", "2024"}),
                  "Unbekannte Angabe „--jahre“ – gemeint ist vielleicht „--jahr“."},
        UsageCase{"UnknownShortOption", printing({"-x"}), "Unbekannte Angabe „-x“."},
        UsageCase{"OptionWithoutValue", printing({"--jahr"}), "--jahr braucht einen Wert."},
        UsageCase{"OptionWithEmptyValue", printing({"--jahr="}), "--jahr braucht einen Wert."},
        UsageCase{"OptionInPlaceOfAValue", printing({"-j", "--monat", "3"}), "--jahr braucht einen Wert."},
        UsageCase{"OptionTwice", printing({"--jahr", "2023", "-j", "2024"}), "--jahr steht mehrmals da."},
        UsageCase{"FormatAgainstEnding", printing({"-o", "u.xlsx", "--format", "pdf"}),
                  "--format und die Endung von „u.xlsx“ widersprechen sich."},
        UsageCase{"SeveralListsInOneFile",
                  {"drucken", "Umsatz", "KalkKo", "-d", "d", "-f", "1", "-o", "x.pdf"},
                  "Mehrere Listen oder Firmen kommen nicht in eine Datei; --nach ORDNER legt für jede eine an, "
                  "--mappe DATEI bindet alle "
                  "zusammen."},
        UsageCase{"BinderAndFile", printing({"--mappe", "m.pdf", "-o", "x.pdf"}),
                  "--mappe geht nicht mit --ausgabe, --nach, --drucker und --druckerauswahl zusammen."},
        UsageCase{"BinderOfData", printing({"--mappe", "m.csv"}),
                  "--mappe ist ein ganzes PDF: --format, --seiten und --teil gelten nicht dafür."},
        UsageCase{"BinderWithData", printing({"--mappe", "m.pdf", "--beilage", "csv"}),
                  "--beilage gibt es für einzelne Listen, nicht mit --mappe."},
        UsageCase{"BindersWithoutNames", printing({"--mappe", "m.pdf", "--je", "firma"}),
                  "--je firma braucht {firma} im Namen der Mappe."},
        UsageCase{"AccessibleAndPlain", printing({"-o", "x.pdf", "--barrierefrei", "--pdf", "einfach"}),
                  "--barrierefrei geht nicht mit --pdf einfach zusammen."},
        UsageCase{"AccessibleBinder", printing({"--mappe", "m.pdf", "--barrierefrei"}),
                  "--barrierefrei gibt es nur für ganze Dokumente einer Liste, nicht mit --mappe und --seiten."},
        UsageCase{"AccessiblePages", printing({"-o", "x.pdf", "--seiten", "1", "--barrierefrei"}),
                  "--barrierefrei gibt es nur für ganze Dokumente einer Liste, nicht mit --mappe und --seiten."},
        UsageCase{"AccessibleData", printing({"-o", "x.csv", "--barrierefrei"}),
                  "--barrierefrei gibt es nur für PDF-Dateien, mit --ausgabe DATEI oder --nach ORDNER."},
        UsageCase{"AccessiblePaper", printing({"--drucker", "Büro", "--barrierefrei"}),
                  "--barrierefrei gibt es nur für PDF-Dateien, mit --ausgabe DATEI oder --nach ORDNER."},
        UsageCase{"BrokenPart", printing({"-n", "x", "--teil", "9/8"}), "--teil: „9/8“ ist kein Teil wie 3/8."},
        UsageCase{"YearIsNoNumber", printing({"--jahr", "MMXX"}),
                  "--jahr: „MMXX“ ist keine ganze Zahl von 1 bis 9999."},
        UsageCase{"MonthTooLarge", printing({"--monat", "13"}), "--monat: „13“ ist keine ganze Zahl von 1 bis 12."},
        UsageCase{"YearAndRange", printing({"--jahr", "2020", "--von", "2020"}),
                  "Bitte entweder --jahr oder --von und --bis angeben."},
        UsageCase{"ForeignSelection", printing({"--konto-von", "1"}),
                  "--konto-von gilt nicht für die Liste Umsatz; sie kennt --jahr, --von, --bis."},
        UsageCase{"ForeignValues", printing({"--werte", "w.csv"}), "--werte gilt nicht für die Liste Umsatz."},
        UsageCase{"ValuesMissing",
                  {"drucken", "Bilanz", "--datenbank", "d", "--firma", "1"},
                  "Die Liste Bilanz braucht --werte DATEI."},
        UsageCase{"DataWithoutFile", printing({"--format", "csv"}),
                  "--format für Daten braucht --ausgabe DATEI oder --nach ORDNER."},
        UsageCase{"UnknownFormat", printing({"--format", "odt"}),
                  "--format: „odt“ ist nicht möglich; es gibt csv, json, pdf, xlsx."},
        UsageCase{"FileAndPrinter", printing({"--ausgabe", "a", "--drucker", "b"}),
                  "--ausgabe und --nach gehen nicht mit --drucker zusammen."},
        UsageCase{"TrayOfAFile", printing({"--ausgabe", "a", "--fach", "2"}),
                  "--exemplare, --beidseitig und --fach gelten nur für Drucker, nicht für Dateien."},
        UsageCase{"PagesOfData", printing({"-o", "a.csv", "--seiten", "1"}),
                  "--seiten gilt für Seiten, nicht für Daten."},
        UsageCase{"BrokenPageRange", printing({"--seiten", "3-"}),
                  "--seiten: „3-“ ist kein Seitenbereich wie 1-3,7."},
        UsageCase{"BrokenPrintDate", printing({"--druckdatum", "31.2.2024"}),
                  "--druckdatum „31.2.2024“ ist kein Datum wie 31.12.2024 oder 2024-12-31 08:15."}),
    [](const auto& test) { return test.param.name; });

} // namespace
} // namespace kvtdruck::testing
