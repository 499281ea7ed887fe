// What is missing, damaged or refused where the program prints.
#include "cli/command_line_fixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <string>

#include <sys/stat.h>

namespace kvtdruck::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST_F(CommandLine, AnUnknownCompanyIsNamed) {
    auto arguments = command("drucken", "Umsatz", toPdf());
    arguments[4] = "99";
    const auto outcome = run(arguments, environment);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "Fehler: Die allgemeinen Firmendaten für die Firma 99 sind nicht vorhanden.\n");
}

TEST_F(CommandLine, AMissingDatabaseIsNamedAndNotCreated) {
    std::filesystem::remove(database());
    for (const auto& outcome : {print("Umsatz", toPdf()), kvtdruck({"firmen", "--datenbank", database()})}) {
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.errors, HasSubstr("Die Datenbank „" + database() + "“ konnte nicht geöffnet werden."));
    }
    EXPECT_FALSE(std::filesystem::exists(database()));
}

TEST_F(CommandLine, ADatabaseWithoutTablesIsNamed) {
    writeFile(database(), "");
    for (const auto& outcome : {print("Umsatz", toPdf()), kvtdruck({"firmen", "--datenbank", database()})}) {
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.errors,
                    AllOf(HasSubstr("konnten nicht gelesen werden"), HasSubstr("no such table: firma")));
    }
}

TEST_F(CommandLine, ClassNamesAndCodesAreForThoseWhoAskForThem) {
    execute("DROP TABLE umsatz;");
    const auto outcome = print("Umsatz", toPdf());
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("Die Daten von „Umsatz“ konnten nicht gelesen werden."),
                                      Not(HasSubstr("cls")), Not(HasSubstr("-2147467259"))));
    for (const char* option : {"--ausführlich", "--ausfuehrlich"})
        EXPECT_THAT(print("Umsatz", toPdf({option})).errors,
                    AllOf(HasSubstr("clsZugUmsatz"), HasSubstr("(-2147467259 in clsDruck_Umsatz.")));
}

TEST_F(CommandLine, NoDataIsSaid) {
    const auto outcome = print("Umsatz", toPdf({"--jahr", "1949"}));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "Fehler: Keine Daten für 1949; vorhanden: 2019–2025.\n");
    execute("DELETE FROM umsatz;");
    EXPECT_EQ(print("Umsatz", toPdf({"--jahr", "2024"})).errors,
              "Fehler: Es sind keine Daten für den Ausdruck vorhanden.\n");
    EXPECT_EQ(filesNamed("l.pdf"), 0u);
}

TEST_F(CommandLine, AWrongFileOfValuesIsNamedWithItsPlace) {
    writeFile(folder / "w.csv", "Jahr;Gewinn\n2024;1.5\n");
    const auto outcome = print("Bilanz", toPdf({"--werte", output("w.csv")}));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, StartsWith("Fehler: " + output("w.csv") + ", Zeile 2, Spalte 2: "));
}

class EveryFormat : public CommandLine, public ::testing::WithParamInterface<const char*> {};

TEST_P(EveryFormat, AnOutputFolderThatCannotBeWrittenIsAnError) {
    writeFile(folder / "datei", "");
    for (const auto& file : {output("gibtsnicht/l"), output("datei/l")}) {
        const auto outcome = print("Umsatz", {"--format", GetParam(), "--ausgabe", file});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.errors, AllOf(StartsWith("Fehler: "), HasSubstr(file)));
    }
}

/// `fullDisk FOLDER COMMAND…`, a script: the command runs with FOLDER on a disk of 8 kB that exists for it alone;
/// what it holds at the end is listed. Where no disk may be mounted, not even in a name space of users, files of
/// more than 2 kB are refused instead.
const char* const fullDisk = R"(
    folder=$1
    shift
    run='"$@"; code=$?; ls "$0"; exit $code'
    for mounting in '--map-root-user --mount' '--mount'; do
        unshare $mounting mount -t tmpfs -o size=8k none "$folder" 2>/dev/null &&
            exec unshare $mounting sh -c "mount -t tmpfs -o size=8k none \"\$0\"; $run" "$folder" "$@"
    done
    trap '' XFSZ
    ulimit -f 4
    exec sh -c "$run" "$folder" "$@")";

TEST_P(EveryFormat, AFullDiskIsAnErrorAndLeavesNoHalfFile) {
    const auto disk = folder / "disk";
    std::filesystem::create_directory(disk);
    // The first print of all fills the application folder, which is on another disk.
    EXPECT_EQ(print("MaStKost", {"--format", GetParam(), "--ausgabe", output("l")}).exitCode, 0);
    auto arguments = command("drucken", "MaStKost", {"--format", GetParam(), "--ausgabe", (disk / "l").string()});
    arguments.insert(arguments.begin(), {"sh", "-c", fullDisk, "sh", disk.string()});
    const auto outcome = run(arguments, environment);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("Fehler: "), HasSubstr("Datenträger voll")));
    EXPECT_EQ(outcome.output, "");
}

TEST_P(EveryFormat, ATextOfAMegabyteInANamePrints) {
    execute("UPDATE firma SET name1 = replace(hex(zeroblob(500000)), '00', 'Aä');");
    const auto outcome = print("Umsatz", {"--jahr", "2023", "--format", GetParam(), "--ausgabe", output("l")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_GT(std::filesystem::file_size(output("l")), 0u);
}

TEST_P(EveryFormat, InfiniteFiguresPrint) {
    execute("UPDATE umsatz SET iumsatzdm = 9e999, iumsatzdm_01 = -9e999, iumsatzdm_02 = NULL;");
    const auto outcome = print("Umsatz", {"--jahr", "2023", "--format", GetParam(), "--ausgabe", output("l")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_GT(std::filesystem::file_size(output("l")), 0u);
}

TEST_P(EveryFormat, CtrlCLeavesTheOldFile) {
    execute(
        "INSERT INTO mitarbeiter (fnr, nummer, name) WITH RECURSIVE n(i) AS (SELECT 10000 UNION ALL SELECT i + 1 "
        "FROM n WHERE i < 400000) SELECT 1, i, 'Name' FROM n;");
    const auto file = output("l");
    writeFile(file, "alt");
    ASSERT_EQ(::mkfifo(output("p").c_str(), 0600), 0); // shows the record's beginning while it is written
    Program record({"sh", "-c", "{ head -c 100000; cat >/dev/null; } <\"$0\"", output("p")});
    Program program(
        command("drucken", "MitUeber", {"--format", GetParam(), "--ausgabe", file, "--protokoll", output("p")}),
        environment);
    ASSERT_TRUE(waitUntil([&] { return record.output().find("LlPrintFields()") != std::string::npos; }));
    program.signal(SIGINT);
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 130) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(readFile(file) == "alt");
    EXPECT_EQ(filesNamed("l"), 1u) << "nothing unfinished is left";
}

INSTANTIATE_TEST_SUITE_P(All, EveryFormat, ::testing::Values("pdf", "csv", "xlsx", "json"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(CommandLine, ABrokenLayoutIsNamedWithFileAndReason) {
    std::filesystem::create_directories(layouts());
    writeFile(layouts() / "Umsatz.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\">\n<g>\n</svg>\n");
    const auto outcome = print("Umsatz", toPdf());
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("Umsatz.svg"), HasSubstr("kein wohlgeformtes XML")));
    EXPECT_EQ(filesNamed("l.pdf"), 0u);
}

TEST_F(CommandLine, AnApplicationFolderCanBeChosen) {
    ASSERT_EQ(print("Umsatz", toPdf({"--ordner", output("app")})).exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "app" / "DB" / "BerichteLLVT" / "Preview"));
    EXPECT_FALSE(std::filesystem::exists(layouts()));
}

TEST_F(CommandLine, WithoutAHomeTheUserLearnsWhatIsMissing) {
    environment["HOME"] = environment["XDG_DATA_HOME"] = "";
    const auto outcome = print("Umsatz", toPdf());
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("weder HOME noch XDG_DATA_HOME ist gesetzt. --ordner nennt einen."));
    std::filesystem::create_directory(folder / "leer");
    run({"sh", "-c", "cd \"$1\" && exec \"$2\" drucken Umsatz -f 1 -d \"$3\" -o l.pdf", "sh", output("leer"),
         kProgram, database()},
        environment);
    EXPECT_TRUE(std::filesystem::is_empty(folder / "leer")) << "nothing in the working directory";
    EXPECT_EQ(print("Umsatz", toPdf({"--ordner", output("app")})).exitCode, 0);
}

} // namespace
} // namespace kvtdruck::testing
