// Command lines that are understood, and those that are refused with the reason. The program is not started.
#include "cli/options.h"

#include "catalog/usage_error.h"
#include "platform/posix/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kvtdruck::cli {
namespace {

using ::testing::HasSubstr;

class CommandLines : public ::testing::Test {
  protected:
    CommandLines() {
        ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1); // no settings but those of the test
    }
    ~CommandLines() override { ::unsetenv("XDG_CONFIG_HOME"); }

    /// Words are separated by blanks; "_" is a blank within one.
    static std::vector<Options> parsed(const std::string& line) {
        std::istringstream in(line);
        std::vector<std::string> words{"kvtdruck"};
        for (std::string word; in >> word;) {
            std::replace(word.begin(), word.end(), '_', ' ');
            words.push_back(word);
        }
        std::vector<const char*> arguments;
        arguments.reserve(words.size());
        for (const auto& word : words)
            arguments.push_back(word.c_str());
        return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
    }
    static std::string refusal(const std::string& line) {
        try {
            parsed(line);
        } catch (const catalog::UsageError& error) {
            return error.what();
        }
        return "";
    }
    static Options one(const std::string& line) { return parsed("drucken Umsatz -f 1 -d x.sqlite " + line).at(0); }
    static std::string refused(const std::string& line) {
        return refusal("drucken Umsatz -f 1 -d x.sqlite " + line);
    }

    TemporaryFolder home;
};

TEST_F(CommandLines, WhatDoesNotGoTogetherIsRefusedWithTheReason) {
    const std::pair<const char*, const char*> cases[] = {
        {"fragen Umsatz", "Unbekannter Befehl „fragen“"},
        {"drucken", "Es fehlt die Liste"},
        {"drucken Umsätze -f 1 -d x", "gemeint ist vielleicht „Umsatz“"},
        {"drucken Umsatz -f 1", "Es fehlt die Datenbank"},
        {"drucken Umsatz -d x", "Es fehlt --firma NUMMER"},
        {"drucken Umsatz -f 1 -d x --verbindung y", "--datenbank und --verbindung gehen nicht zusammen"},
        {"drucken Umsatz -f 1 -d x --kennwort-fragen", "--kennwort-fragen gilt nur mit --verbindung"},
        {"drucken Umsatz -f 1 -d x --kennwort-datei k", "--kennwort-datei gilt nur mit --verbindung"},
        {"drucken Bilanz -f 1 -d x", "Die Liste Bilanz braucht --werte DATEI"},
        {"drucken Umsatz -f 1 -d x -w w.csv", "--werte gilt nicht für die Liste Umsatz"},
        {"vorschau Umsatz Firma -f 1 -d x", "Mehrere Listen auf einmal gibt es nur mit"},
        {"vorschau Umsatz -f 1,2 -d x", "Mehrere Firmen auf einmal gibt es nur mit „drucken“"},
        {"gestalten Umsatz -f 1 -d x --live --beispielwerte", "--live und --beispielwerte gehen nicht zusammen"},
        {"pruefen Umsatz Firma --layout l.svg", "--layout braucht die Liste, zu der die Datei gehört"},
        {"pruefen --layout l.svg", "--layout braucht die Liste, zu der die Datei gehört"},
        {"layouts Umsatz Firma", "„layouts“ nennt eine Liste oder keine"},
        {"layouts --mitgeliefert", "--mitgeliefert und --zurueck brauchen eine Liste"},
        {"layouts --zurueck", "--mitgeliefert und --zurueck brauchen eine Liste"},
        {"layouts Umsatz --zurueck --mitgeliefert", "--mitgeliefert und --zurueck gehen nicht zusammen"},
        {"einlesen umsatz", "Der Aufruf ist „kvtdruck einlesen TABELLE DATEI"},
        {"einlesen umsatz u.csv", "eingelesen wird in eine SQLite-Datenbank"},
        {"drucken Umsatz --auftrag a.toml", "Der Aufruf ist „kvtdruck drucken --auftrag DATEI“"},
        {"drucken --auftrag a.toml Umsatz", "Der Aufruf ist „kvtdruck drucken --auftrag DATEI“"},
        {"drucken --auftrag=a.toml Umsatz", "Der Aufruf ist „kvtdruck drucken --auftrag DATEI“"},
        {"vorschau --auftrag a.toml", "Der Aufruf ist „kvtdruck drucken --auftrag DATEI“"},
        {"drucken --auftrag", "Der Aufruf ist „kvtdruck drucken --auftrag DATEI“"},
    };
    for (const auto& [line, reason] : cases)
        EXPECT_THAT(refusal(line), HasSubstr(reason)) << line;
}

TEST_F(CommandLines, OneDocumentHasOnePlaceAndOneKind) {
    const std::pair<const char*, const char*> cases[] = {
        {"-o a.pdf -n ordner", "--ausgabe und --nach gehen nicht zusammen"},
        {"-o a.pdf --drucker p", "gehen nicht mit --drucker zusammen"},
        {"-f 1,2 -o a.pdf", "--firma steht mehrmals da"},
        {"--name {liste}", "--je und --name gelten nur mit --nach ORDNER"},
        {"--je jahr -o a.pdf", "--je und --name gelten nur mit --nach ORDNER"},
        {"--je woche -n ordner", "--je"},
        {"--format csv", "--format für Daten braucht --ausgabe DATEI oder --nach ORDNER"},
        {"--format csv -o a.pdf", "widersprechen sich"},
        {"--format doc -o a", "--format"},
        {"--beilage csv", "--beilage gibt es nur für PDF-Dateien"},
        {"--beilage csv -o a.csv", "--beilage gibt es nur für PDF-Dateien"},
        {"--seiten 1 -o a.csv", "--seiten gilt für Seiten, nicht für Daten"},
        {"--druckerauswahl -o a.csv", "--druckerauswahl gibt es nur für gedruckte Seiten"},
        {"--druckerauswahl -n ordner", "--druckerauswahl gibt es nur für gedruckte Seiten"},
        {"--exemplare 2 -o a.pdf", "gelten nur für Drucker, nicht für Dateien"},
        {"--fach 2 -o a.pdf", "gelten nur für Drucker, nicht für Dateien"},
        {"--beidseitig lang -o a.pdf", "gelten nur für Drucker, nicht für Dateien"},
        {"--barrierefrei", "--barrierefrei gibt es nur für PDF-Dateien"},
        {"--barrierefrei -o a.csv", "--barrierefrei gibt es nur für PDF-Dateien"},
        {"--barrierefrei --pdf einfach -o a.pdf", "--barrierefrei geht nicht mit --pdf einfach zusammen"},
        {"--barrierefrei --seiten 1 -o a.pdf", "--barrierefrei gibt es nur für ganze Dokumente einer Liste"},
        {"--barrierefrei --mappe a.pdf", "--barrierefrei gibt es nur für ganze Dokumente einer Liste"},
        {"--mappe m.pdf -o a.pdf", "--mappe geht nicht mit"},
        {"--mappe m.pdf -n ordner", "--mappe geht nicht mit"},
        {"--mappe m.pdf --drucker p", "--mappe geht nicht mit"},
        {"--mappe m.pdf --druckerauswahl", "--mappe geht nicht mit"},
        {"--mappe m.pdf --je firma", "--je firma braucht {firma} im Namen der Mappe"},
        {"--mappe m.csv", "--mappe ist ein ganzes PDF"},
        {"--mappe m.pdf --seiten 1", "--mappe ist ein ganzes PDF"},
        {"--mappe m.pdf --teil 1/2", "--mappe ist ein ganzes PDF"},
        {"--mappe m.pdf --beilage csv", "--beilage gibt es für einzelne Listen"},
    };
    for (const auto& [line, reason] : cases)
        EXPECT_THAT(refused(line), HasSubstr(reason)) << line;
    EXPECT_THAT(refusal("drucken Umsatz -f 1,2 -d x -o a.pdf"), HasSubstr("kommen nicht in eine Datei"));
    EXPECT_THAT(refusal("drucken Umsatz -f alle -d x -o a.pdf"), HasSubstr("kommen nicht in eine Datei"));
    EXPECT_THAT(refusal("drucken Umsatz Firma -f 1 -d x -o a.pdf"), HasSubstr("kommen nicht in eine Datei"));
    const auto database = (home / "d.pdf").string();
    std::ofstream(database) << "x";
    EXPECT_THAT(refusal("drucken Umsatz -f 1 -d " + database + " --mappe " + database), HasSubstr("überschreiben"));
}

TEST_F(CommandLines, ValuesOutsideTheirRangeAreNamed) {
    for (const char* text : {"", "x", "-1", "1,x", "1,,2", "9007199254740993", "99999999999999999999"})
        EXPECT_THAT(refusal("drucken Umsatz -d x --firma=" + std::string(text)), HasSubstr("--firma")) << text;
    for (const char* text : {"32.1.2024", "2024-02-30", "31.12.2024_24:00", "31.12.2024_10:60",
                             "2024-12-31T10:00:60", "gestern", "31.12.2024_08:15+15:00"})
        EXPECT_THAT(refused("--druckdatum " + std::string(text)), HasSubstr("--druckdatum „")) << text;
    for (const char* text : {"3", "0/8", "9/8", "x/8", "1/x", "1/0", "1/1000001", "-1/8"})
        EXPECT_THAT(refused("--teil=" + std::string(text)), HasSubstr("--teil: „")) << text;
    for (const char* text : {"0", "1-", "-3", "1-2-3", "1,", ",1", "1--3", "01", "1-02", "1234567890", "1;2", "a"})
        EXPECT_THAT(refused("--seiten=" + std::string(text)), HasSubstr("ist kein Seitenbereich")) << text;
    EXPECT_THAT(refused("--jahr 24x"), HasSubstr("ist keine ganze Zahl von"));
    EXPECT_THAT(refused("--locale xx-YY"), HasSubstr("--locale xx-YY: Die Ländereinstellung"));
}

TEST_F(CommandLines, AreTakenAsTheySay) {
    EXPECT_EQ(one("--seiten 1-3,7,999999999").printing.pages, "1-3,7,999999999");
    std::string much = "1";
    for (int page = 2; page < 20'000; ++page)
        much += "," + std::to_string(page);
    EXPECT_EQ(one("--seiten " + much).printing.pages, much);
    const auto date = one("--druckdatum 2024-12-31T08:15:30-03:30").printDate;
    EXPECT_EQ(std::tuple(date.year, date.month, date.day, date.hour, date.minute, date.second, date.utcOffset),
              std::tuple(2024, 12, 31, 8, 15, 30, -210));
    EXPECT_EQ(one("--druckdatum 1.2.2024_8:15Z").printDate.utcOffset, 0);
    EXPECT_EQ(one("--druckdatum 1.2.2024_8:15+01:00").printDate.utcOffset, 60);
    const auto part = one("--teil 3/8 -n ordner").part;
    EXPECT_EQ(std::pair(part.number, part.of), std::pair(3, 8));
    EXPECT_EQ(parsed("drucken Umsatz -d x -f 1,7,9").at(0).companies, (std::vector<double>{1, 7, 9}));
    EXPECT_TRUE(parsed("drucken Umsatz -d x -f alle -n o").at(0).allCompanies);
    EXPECT_EQ(parsed("drucken alle -d x -f 1 -n o -w werte").at(0).reports.size(), 18U);
    EXPECT_EQ(parsed("drucken Umsatz umsatz -d x -f 1").at(0).reports.size(), 1U) << "named twice, taken once";
    EXPECT_EQ(one("-o A.XLSX").data, druckwerk::DataFormat::Xlsx);
    EXPECT_EQ(one("-o a.dat --format json").data, druckwerk::DataFormat::Json);
    EXPECT_EQ(one("--mappe m-{firma}.pdf --je firma").per, Per::Company);
    EXPECT_EQ(one("--barrierefrei -o a.pdf").level, druckwerk::PdfLevel::Accessible);
    EXPECT_TRUE(parsed("pruefen").at(0).allReports);
    EXPECT_TRUE(parsed("pruefen Umsatz").at(0).blank);
    EXPECT_FALSE(parsed("pruefen Umsatz -f 1 -d x").at(0).blank);
    EXPECT_TRUE(parsed("listen Umsatz Firma").at(0).reports.empty());
}

TEST_F(CommandLines, AJobFileHasItsPrintsAndSaysWhereOneIsWrong) {
    const auto file = (home / "auftrag.toml").string();
    const auto write = [&](const std::string& text) { std::ofstream(file) << text; };
    write("datenbank = 'x.sqlite'\nfirma = 1\nlisten = ['Umsatz']\n[[druck]]\nausgabe = 'a.pdf'\n"
          "[[druck]]\nlisten = ['Firma']\nausgabe = 'b.pdf'\n");
    const auto before = std::filesystem::current_path();
    const auto jobs = parsed("drucken --auftrag=" + file);
    EXPECT_EQ(std::filesystem::current_path(), home.path()) << "paths in it begin at its own folder";
    std::filesystem::current_path(before);
    ASSERT_EQ(jobs.size(), 2U);
    EXPECT_EQ(jobs[0].reports.at(0)->listName, "Umsatz");
    EXPECT_EQ(jobs[1].reports.at(0)->listName, "Firma");
    write("datenbank = 'x.sqlite'\nfirma = 1\n[[druck]]\nausgabe = 'a.pdf'\n");
    EXPECT_THAT(refusal("drucken --auftrag " + file), HasSubstr("Druck in Zeile 3: Es fehlt die Liste"));
    write("datenbank = 'x.sqlite'\n");
    EXPECT_THAT(refusal("drucken --auftrag " + file), HasSubstr("Es fehlt [[druck]]"));
}

} // namespace
} // namespace kvtdruck::cli
