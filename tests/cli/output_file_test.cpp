// Where output goes: complete or not at all, and never over what somebody else needs.
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace kvtdruck::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class OutputFileTest : public ProgramTest {
  protected:
    Outcome shell(const std::string& script, const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{"bash", "-c", script, "bash"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run(command, environment);
    }
    static mode_t modeOf(const std::filesystem::path& file) {
        struct stat status {};
        EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
        return status.st_mode & 07777;
    }
    std::vector<std::string> unfinished() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (entry.path().filename().string().rfind(".kvtdruck-", 0) == 0)
                names.push_back(entry.path().filename());
        return names;
    }
};

/// A format, how its files begin and how a run asks for it.
struct Format {
    const char* name;
    std::string head;
};

class EachFormat : public OutputFileTest, public ::testing::WithParamInterface<Format> {
  protected:
    Outcome printTo(const std::string& file, const std::vector<std::string>& more = {}) const {
        return print("MitUeber", arguments(file, more));
    }
    static std::vector<std::string> arguments(const std::string& file, const std::vector<std::string>& more = {}) {
        std::vector<std::string> result{"--format", GetParam().name, "--ausgabe", file};
        result.insert(result.end(), more.begin(), more.end());
        return result;
    }
};

TEST_P(EachFormat, AMinusIsStandardOutput) {
    const auto outcome = printTo("-");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, StartsWith(GetParam().head));
    EXPECT_FALSE(std::filesystem::exists("-"));
}

TEST_P(EachFormat, StandardOutputByItsPathIsWrittenToAndNotReplaced) {
    const auto file = output("gesammelt");
    writeFile(file, "davor\n");
    const auto outcome = shell("\"$@\" >> " + file, command("drucken", "MitUeber", arguments("/dev/stdout")));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(readFile(file), StartsWith("davor\n" + GetParam().head));
    EXPECT_TRUE(std::filesystem::is_symlink("/dev/stdout"));
}

TEST_P(EachFormat, APipeTakesTheOutput) {
    const auto outcome =
        shell("\"$@\" | cat; exit ${PIPESTATUS[0]}", command("drucken", "MitUeber", arguments("/dev/stdout")));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, StartsWith(GetParam().head));
}

TEST_P(EachFormat, ANamedPipeTakesTheOutputAndStays) {
    const auto pipe = output("rohr");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto outcome =
        shell("cat " + pipe + " & \"$@\"; r=$?; wait; exit $r", command("drucken", "MitUeber", arguments(pipe)));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, StartsWith(GetParam().head));
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST_P(EachFormat, AFullStandardOutputIsAnError) {
    const auto outcome = shell("\"$@\" > /dev/full", command("drucken", "MitUeber", arguments("-")));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Datenträger voll"));
}

TEST_P(EachFormat, ANewFileIsItsOwnersAlone) {
    printTo(output("neu"));
    EXPECT_EQ(modeOf(output("neu")), 0600U);
}

TEST_P(EachFormat, AReplacedFileKeepsItsModeAndALinkStaysOne) {
    writeFile(output("alt"), "alt");
    ASSERT_EQ(::chmod(output("alt").c_str(), 0640), 0);
    std::filesystem::create_symlink("alt", output("verweis"));
    EXPECT_EQ(printTo(output("verweis")).exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(output("verweis")));
    EXPECT_THAT(readFile(output("alt")), StartsWith(GetParam().head));
    EXPECT_EQ(modeOf(output("alt")), 0640U);
}

/// The report is through and its pages are complete, but something has gone wrong on the way.
TEST_P(EachFormat, AFailedRunReplacesNoFile) {
    writeFile(output("alt"), "alt");
    const auto outcome = printTo(output("alt"), {"--protokoll", "/dev/full"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Das Protokoll /dev/full kann nicht geschrieben werden"));
    EXPECT_EQ(readFile(output("alt")), "alt");
    EXPECT_THAT(unfinished(), ElementsAre());
}

/// With less and less room for files, a run either says that it has failed, or its file is the one that it writes
/// with all the room it wants.
TEST_P(EachFormat, WithoutRoomTheOldFileStays) {
    const std::vector<std::string> date{"--druckdatum", "2024-03-09 08:15"};
    ASSERT_EQ(printTo(output("ganz"), date).exitCode, 0);
    const auto whole = readFile(output("ganz"));
    int failed = 0;
    for (std::size_t kilobytes = 0; kilobytes * 1024 < whole.size() + 4096; ++kilobytes) {
        writeFile(output("alt"), "alt");
        const auto outcome = shell("trap '' XFSZ; ulimit -f " + std::to_string(kilobytes) + "; exec \"$@\"",
                                   command("drucken", "MitUeber", arguments(output("alt"), date)));
        ASSERT_THAT(outcome.exitCode, ::testing::AnyOf(0, 1)) << kilobytes << ": " << outcome.errors;
        failed += outcome.exitCode;
        ASSERT_EQ(readFile(output("alt")), outcome.exitCode == 0 ? whole : "alt") << kilobytes << " KB";
        ASSERT_THAT(unfinished(), ElementsAre());
    }
    EXPECT_GE(failed, 1);
}

INSTANTIATE_TEST_SUITE_P(All, EachFormat,
                         ::testing::Values(Format{"pdf", "%PDF-1.7"}, Format{"csv", "\xEF\xBB\xBF"},
                                           Format{"xlsx", "PK\3\4"}, Format{"json", "{\"abschnitte\""}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(OutputFileTest, AFullStandardOutputIsAnErrorOfWhatOnlyTellsSomething) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {kProgram, "listen"}, {kProgram, "--help"}, {kProgram, "firmen", "--datenbank", database()}}) {
        const auto outcome = shell("\"$@\" > /dev/full", arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments[1];
        EXPECT_THAT(outcome.errors, HasSubstr("Die Standardausgabe kann nicht geschrieben werden")) << arguments[1];
    }
}

TEST_F(OutputFileTest, WhatIsReadIsNotWrittenOver) {
    haveOwnLayout();
    const auto layout = (layouts() / "Umsatz.svg").string();
    std::filesystem::create_symlink(database(), output("verweis"));
    for (const std::string& input : {database(), layout, output("verweis")}) {
        const auto before = readFile(input);
        for (const char* option : {"--ausgabe", "--protokoll"}) {
            const auto outcome =
                print("Umsatz", {option, input, option == std::string("--ausgabe") ? "--protokoll" : "--ausgabe",
                                 output("anderes")});
            EXPECT_EQ(outcome.exitCode, 2) << option << " " << input;
            EXPECT_THAT(outcome.errors, HasSubstr(std::string(option) + " würde die Datei "));
            EXPECT_EQ(readFile(input), before);
        }
    }
    EXPECT_EQ(print("Umsatz", {"--ausgabe", output("eins"), "--protokoll", output("eins")}).exitCode, 2);
}

TEST_F(OutputFileTest, AFileOfValuesIsNotWrittenOver) {
    const std::string values = output("werte.csv");
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/demo/werte/Bilanz.csv", values);
    const auto before = readFile(values);
    EXPECT_EQ(print("Bilanz", {"--werte", values, "--ausgabe", values}).exitCode, 2);
    EXPECT_EQ(readFile(values), before);
}

/// No structure where it could not be relied on: nothing is printed, and what was there stays.
TEST_F(OutputFileTest, WhatCannotBeAccessibleIsNotWritten) {
    const std::string file = output("liste.pdf");
    for (const auto& options : {std::vector<std::string>{"--ausgabe", file, "--pdf", "einfach"},
                                {"--ausgabe", file, "--seiten", "1"},
                                {"--mappe", file}}) {
        SCOPED_TRACE(options.back());
        const auto accessible = command("drucken", "MitUeber", options);
        for (const std::string before : {"", "Älteres"}) {
            std::filesystem::remove(file);
            if (!before.empty())
                writeFile(file, before);
            auto refused = accessible;
            refused.emplace_back("--barrierefrei");
            const auto outcome = run(refused, environment);
            EXPECT_EQ(outcome.exitCode, 2);
            EXPECT_THAT(outcome.errors, StartsWith("Fehler: --barrierefrei "));
            EXPECT_EQ(std::filesystem::exists(file), !before.empty());
            EXPECT_EQ(before.empty() ? "" : readFile(file), before);
            EXPECT_THAT(unfinished(), ElementsAre());
        }
        EXPECT_EQ(run(accessible, environment).exitCode, 0) << "without the structure it goes";
    }
}

/// A link at the name that an unfinished file used to have led to somebody's file.
TEST_F(OutputFileTest, APlantedLinkLeadsNowhere) {
    writeFile(output("opfer"), "Opfer");
    const auto outcome =
        shell("ln -s opfer " + output("daten.csv") + ".unfertig-$$; exec \"$@\"",
              command("drucken", "MitUeber", {"--format", "csv", "--ausgabe", output("daten.csv")}));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(readFile(output("opfer")), "Opfer");
}

TEST_F(OutputFileTest, ARecordIsWholeAndItsOwnersAlone) {
    print("Umsatz", {"--ausgabe", output("a.pdf"), "--protokoll", output("protokoll")});
    EXPECT_EQ(modeOf(output("protokoll")), 0600U);
    EXPECT_THAT(readFile(output("protokoll")), HasSubstr("LlPrintEnd(0) = 0\n"));
}

/// The layout is the author's work: whatever happens while it is in the designer, it stays whole.
TEST_F(OutputFileTest, ALayoutInTheDesignerStaysUntilItIsReplacedAsAWhole) {
    writeScript(folder / "bin" / "inkscape", "true");
    environment["DISPLAY"] = ":0";
    haveOwnLayout();
    const auto layout = layouts() / "Umsatz.svg";
    const auto before = readFile(layout);
    writeScript(folder / "bin" / "inkscape", "for file; do :; done\ncp " + layout.string() + " " +
                                                 output("meanwhile") + "\necho kaputt > \"$file\"\nkill -9 $PPID");
    run(command("gestalten", "Umsatz"), environment);
    EXPECT_EQ(readFile(output("meanwhile")), before);
    EXPECT_EQ(readFile(layout), before);
}

} // namespace
} // namespace kvtdruck::testing
