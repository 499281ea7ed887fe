// What the shells offer, the manual page, and the version.
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

namespace kvtdruck::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class Completion : public ProgramTest {
  protected:
    Completion() { std::filesystem::create_symlink(kProgram, folder / "bin" / "kvtdruck"); }

    /// What the program offers for words of which the last is begun.
    std::string offered(std::vector<std::string> words) const {
        words.insert(words.begin(), "vervollstaendigen");
        const auto outcome = kvtdruck(words);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        return outcome.output;
    }
    static std::string script(const std::string& name) {
        return KVT_SOURCE_FOLDER "/packaging/linux/completion/" + name;
    }
};

TEST_F(Completion, OffersCommandsListsAndOptions) {
    EXPECT_THAT(offered({""}), AllOf(HasSubstr("drucken\tdruckt Listen"), HasSubstr("\nfirmen\t")));
    EXPECT_EQ(offered({"listen", "gem"}), "GemeinK\tGemeinkosten\n");
    EXPECT_THAT(offered({"drucken", "Umsatz", ""}),
                AllOf(HasSubstr("UmsatzHW\t"), Not(HasSubstr("Umsatz\t")), HasSubstr("alle\talle Listen\n")));
    EXPECT_THAT(offered({"vorschau", ""}), Not(HasSubstr("alle\t")));
    EXPECT_EQ(offered({"drucken", "--fo"}), "--format\tArt der Ausgabedatei, wo keine Endung sie sagt\n");
    EXPECT_EQ(offered({"drucken", "--format", "csv", "--fo"}), "");
}

TEST_F(Completion, OffersValues) {
    EXPECT_THAT(offered({"drucken", "--format", "x"}), StartsWith("xlsx\t"));
    EXPECT_THAT(offered({"drucken", "--format=x"}), StartsWith("--format=xlsx\t"));
    EXPECT_EQ(offered({"drucken", "-d", ""}), ":datei\n");
    EXPECT_EQ(offered({"drucken", "--nach", ""}), ":ordner\n");
}

TEST_F(Completion, OffersWhatTheDatabaseHolds) {
    EXPECT_EQ(offered({"drucken", "Umsatz", "-d", database(), "-f", "1"}), "1\tMüller & Söhne GmbH, Dresden\n");
    EXPECT_THAT(offered({"drucken", "Umsatz", "-d", database(), "-f", "1,2"}), StartsWith("1,2\tElektro"));
    EXPECT_EQ(offered({"drucken", "GemeinK", "-d", database(), "-f", "1", "--jahr", ""}),
              "2024\tJahr\n2025\tJahr\n");
    EXPECT_THAT(offered({"drucken", "MaStKost", "-d", database(), "-f", "1", "--mitarbeiter-von", "5"}),
                StartsWith("5\tMitarbeiter\n"));
    environment["KVTDRUCK_DATENBANK"] = database();
    environment["KVTDRUCK_FIRMA"] = "1";
    EXPECT_THAT(offered({"drucken", "Umsatz", "--von", "201"}), HasSubstr("2019\tJahr\n"));
}

TEST_F(Completion, OffersTasksAndTablesOfADatabase) {
    EXPECT_THAT(offered({"datenbank", "v"}), StartsWith("vorlage\t"));
    EXPECT_THAT(offered({"datenbank", "vorlage", "post"}), StartsWith("postgresql\t"));
    EXPECT_THAT(offered({"einlesen", "kon"}), StartsWith("konten\t"));
    EXPECT_EQ(offered({"einlesen", "umsatz", ""}), ":datei\n");
}

TEST_F(Completion, OffersNothingWhereTheDatabaseCannotBeRead) {
    const auto outcome = kvtdruck({"vervollstaendigen", "drucken", "-d", output("fehlt.sqlite"), "-f", ""});
    EXPECT_EQ(outcome.output, "");
}

TEST_F(Completion, UnderstandsWordsAsTheShellShowsThem) {
    std::filesystem::copy_file(database(), folder / "meine firma.sqlite");
    environment["HOME"] = folder.path().string();
    EXPECT_THAT(offered({"firmen", "-d", "\"" + output("meine firma.sqlite") + "\"", "-"}),
                HasSubstr("--verbindung"));
    for (const char* typed : {"~/meine\\ firma.sqlite", "~/'meine firma.sqlite'"})
        EXPECT_THAT(offered({"drucken", "-d", typed, "-f", ""}), StartsWith("1\tMüller")) << typed;
}

TEST_F(Completion, WorksInBash) {
    const auto complete = [&](const std::string& line) {
        return run({"bash", "-c",
                    "source /usr/share/bash-completion/bash_completion; source " + script("kvtdruck.bash") +
                        "; COMP_LINE=$1; COMP_POINT=${#1}; read -ra COMP_WORDS <<<\"$1\"; [[ $1 != *' ' ]] || "
                        "COMP_WORDS+=(''); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kvtdruck; printf '%s\\n' "
                        "\"${COMPREPLY[@]}\"",
                    "bash", line},
                   environment);
    };
    const auto lists = complete("kvtdruck drucken Mat");
    EXPECT_EQ(lists.output, "MatUeber\n") << lists.errors;
    EXPECT_EQ(complete("kvtdruck drucken GemeinK -d " + database() + " -f 1 -j ").output, "2024\n2025\n");
    EXPECT_EQ(complete("kvtdruck firmen -d " + folder.path().string() + "/fir").output, database() + "\n");
}

TEST_F(Completion, WorksInFish) {
    const auto complete = [&](const std::string& line) {
        return run({"fish", "--no-config", "-c",
                    "source " + script("kvtdruck.fish") + "; complete --do-complete '" + line + "'"},
                   environment);
    };
    const auto lists = complete("kvtdruck drucken Mat");
    EXPECT_EQ(lists.output, "MatUeber\tMaterialübersicht\n") << lists.errors;
    EXPECT_EQ(complete("kvtdruck drucken GemeinK -d " + database() + " -f 1 -j ").output,
              "2024\tJahr\n2025\tJahr\n");
    EXPECT_THAT(complete("kvtdruck firmen -d " + folder.path().string() + "/fir").output, HasSubstr(database()));
}

TEST_F(Completion, WorksInZsh) {
    environment["ZDOTDIR"] = folder.path().string();
    writeFile(folder / ".zshrc", "PROMPT=; fpath=(" KVT_SOURCE_FOLDER "/packaging/linux/completion $fpath); "
                                 "autoload -Uz compinit; compinit -D -u; zstyle ':completion:*' menu no\n");
    // Types into a shell at a terminal of its own, and reads until `answer` has come.
    const auto types = [&](const std::string& keys, const std::string& answer) {
        const std::string script = "zmodload zsh/zpty; zpty shell zsh -i; zpty -wn shell \"$1\"; "
                                   "zpty -r shell text \"*$2*\" && print -r -- $text";
        return run({"timeout", "60", "zsh", "-f", "-c", script, "zsh", keys, answer}, environment);
    };
    EXPECT_EQ(types("kvtdruck listen mat\t\n", "MatUeber: Materialübersicht").exitCode, 0);
    EXPECT_EQ(types("kvtdruck drucken GemeinK -d " + database() + " -f 1 -j \t\t", "-- Jahr").exitCode, 0);
    EXPECT_EQ(types("kvtdruck firmen -d " + folder.path().string() + "/fir\t\n", "Dresden").exitCode, 0);
}

TEST_F(Completion, TheManualTellsEveryOptionThatTheHelpTells) {
    const auto manual = kvtdruck({"handbuch"}).output;
    writeFile(folder / "kvtdruck.1", manual);
    const auto page = run({"man", "--local-file", "--warnings=w", output("kvtdruck.1")},
                          {{"LC_ALL", "C.UTF-8"}, {"MANWIDTH", "100"}});
    EXPECT_EQ(page.errors, "");
    EXPECT_THAT(page.output,
                AllOf(HasSubstr("-f, --firma NUMMER"), HasSubstr("kvtdruck firmen -d musterbau.sqlite"),
                      HasSubstr("RÜCKGABEWERT"), HasSubstr("„alle“")));
    const auto help = kvtdruck({"drucken", "--hilfe"}).output;
    const auto options = run({"grep", "-o", "^  *-[^ ]*"}, {}, help).output;
    EXPECT_NE(options, "");
    std::istringstream lines(options);
    for (std::string option; lines >> option;)
        EXPECT_THAT(page.output, HasSubstr(option.substr(option.rfind(',') + 1)));
}

TEST_F(Completion, TheVersionNamesTheLibraries) {
    const auto version = kvtdruck({"--version"}).output;
    EXPECT_THAT(version, AllOf(StartsWith("kvtdruck " KVT_VERSION "\n"), HasSubstr("\n  SQLite 3."),
                               HasSubstr("\n  unixODBC 2."), HasSubstr("\n  HarfBuzz ")));
    EXPECT_EQ(kvtdruck({"-V"}).output, version);
}

} // namespace
} // namespace kvtdruck::testing
