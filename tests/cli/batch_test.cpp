// Many documents with one call.
#include "cli/many_companies.h"
#include "cli/program_fixture.h"
#include "cli/workers.h"

#include <gmock/gmock.h>

#include <csignal>
#include <iostream>
#include <map>

namespace kvtdruck::testing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Batches : public ProgramTest {
  protected:
    Outcome printAll(const std::vector<std::string>& lists, const std::vector<std::string>& more,
                     const std::string& into = "aus") const {
        std::vector<std::string> arguments{"drucken"};
        arguments.insert(arguments.end(), lists.begin(), lists.end());
        arguments.insert(arguments.end(), {"-d", database(), "--druckdatum", "31.12.2024", "--nach", output(into)});
        arguments.insert(arguments.end(), more.begin(), more.end());
        return kvtdruck(arguments);
    }
    /// The files of a folder with their contents.
    std::map<std::string, std::string> files(const std::string& name = "aus") const {
        std::map<std::string, std::string> result;
        if (std::filesystem::exists(folder / name))
            for (const auto& entry : std::filesystem::directory_iterator(folder / name))
                result[entry.path().filename().string()] = readFile(entry.path());
        return result;
    }
    std::vector<std::string> names(const std::string& name = "aus") const {
        std::vector<std::string> result;
        for (const auto& [file, content] : files(name))
            result.push_back(file);
        return result;
    }
    void addCompanies(int count) const { execute(manyCompanies(count)); }
};

TEST_F(Batches, AllListsGoToAFolder) {
    const std::string values = KVT_SOURCE_FOLDER "/demo/werte";
    const auto outcome = printAll({"alle"}, {"-f", "1", "-j", "2024", "--werte", values});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.output + outcome.errors, "");
    EXPECT_THAT(names(), ::testing::SizeIs(18));
    EXPECT_THAT(names(), ::testing::IsSupersetOf({"Umsatz-1-2024.pdf", "MaStKost-1-2024.pdf", "Bilanz-1.pdf"}));
}

TEST_F(Batches, WithoutValuesTheListsThatNeedThemAreNamed) {
    const auto outcome = printAll({"alle"}, {"-f", "1", "-j", "2024"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors,
              "Hinweis: Ohne Werte (--werte ORDNER mit LISTE.csv) bleiben weg: Bilanz, BsEMa, BsEStd, "
              "BsEGes, KalkW, WasWenn, UmsatzHW.\n");
    EXPECT_THAT(names(), ::testing::SizeIs(11));
}

TEST_F(Batches, AnyNumberOfProcessesGivesTheSameBytes) {
    for (const char* processes : {"1", "4"})
        ASSERT_EQ(printAll({"alle"}, {"-f", "1", "-j", "2024", "--prozesse", processes}, processes).exitCode, 0);
    EXPECT_THAT(files("1"), Not(IsEmpty()));
    EXPECT_TRUE(files("1") == files("4"));
}

TEST_F(Batches, WhatFailsIsNamedAndTheRestIsPrinted) {
    execute("DELETE FROM kosten;");
    const auto outcome = printAll({"Umsatz", "KalkKo", "MatUeber"}, {"-f", "1,99", "-j", "2024"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(
        outcome.errors,
        AllOf(HasSubstr("KalkKo, Firma 1, 2024: Fehler: Es sind keine Daten für den Ausdruck vorhanden.\n"),
              HasSubstr("Umsatz, Firma 99, 2024: Fehler: Die allgemeinen Firmendaten für die Firma 99 sind nicht "
                        "vorhanden.\n"),
              ::testing::EndsWith("Fehler: Nicht gedruckt (4 von 6):\n  KalkKo, Firma 1, 2024\n  Umsatz, Firma "
                                  "99, 2024\n  KalkKo, Firma 99, 2024\n  MatUeber, Firma 99, 2024\n")));
    EXPECT_THAT(names(), ElementsAre("MatUeber-1-2024.pdf", "Umsatz-1-2024.pdf"));
}

TEST_F(Batches, OneFileForEachYearOrEmployee) {
    ASSERT_EQ(printAll({"KalkKo", "GemeinK", "Firma"}, {"-f", "1", "--von", "2023", "--je", "jahr"}).exitCode, 0);
    EXPECT_THAT(names(),
                ElementsAre("Firma-1-2023.pdf", "Firma-1-2024.pdf", "Firma-1-2025.pdf", "GemeinK-1-2024.pdf",
                            "GemeinK-1-2025.pdf", "KalkKo-1-2023.pdf", "KalkKo-1-2024.pdf", "KalkKo-1-2025.pdf"));
    ASSERT_EQ(printAll({"MaStZeit"},
                       {"-f", "1", "--mitarbeiter-von", "5", "--mitarbeiter-bis", "6", "--je", "mitarbeiter",
                        "--format", "json", "--name", "Blatt {mitarbeiter}"},
                       "je")
                  .exitCode,
              0);
    EXPECT_THAT(names("je"), ElementsAre("Blatt 5.json", "Blatt 6.json"));
}

TEST_F(Batches, PartsAreTheWholeOnceAndDoNotOverlap) {
    ASSERT_EQ(printAll({"alle"}, {"-f", "1", "-j", "2024"}, "ganz").exitCode, 0);
    std::size_t count = 0;
    for (const char* part : {"1/3", "2/3", "3/3"}) {
        ASSERT_EQ(printAll({"alle"}, {"-f", "1", "-j", "2024", "--teil", part}, std::string(1, part[0])).exitCode,
                  0);
        count += files(std::string(1, part[0])).size();
        ASSERT_EQ(printAll({"alle"}, {"-f", "1", "-j", "2024", "--teil", part}, "teile").exitCode, 0);
    }
    EXPECT_EQ(count, files("ganz").size());
    EXPECT_TRUE(files("teile") == files("ganz"));
}

TEST_F(Batches, CtrlCLeavesWhatIsFinished) {
    addCompanies(300);
    Program program({kProgram, "drucken", "KalkKo", "-d", database(), "-f", "alle", "--nach", output("aus")},
                    environment);
    ASSERT_TRUE(waitUntil([&] { return names().size() > 10; }));
    program.signal(SIGTERM);
    const auto outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 130) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr("Hinweis: Abgebrochen: "));
    EXPECT_LT(names().size(), 300u);
    for (const auto& [name, content] : files())
        EXPECT_TRUE(name.ends_with(".pdf") && content.ends_with("%%EOF\n")) << name;
}

TEST_F(Batches, NamesThatMeetAreRefused) {
    const auto outcome = printAll({"Umsatz", "KalkKo"}, {"-f", "1", "--name", "{firma}"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("--name: „{firma}“ gibt mehreren Dateien den Namen „1.pdf“."));
    EXPECT_THAT(printAll({"Umsatz"}, {"-f", "1", "--name", "{unfug}"}).errors,
                HasSubstr("--name: „{unfug}“ gibt es nicht; möglich sind {liste}, {titel}, {firma}, {jahr} und "
                          "{mitarbeiter}."));
}

TEST_F(Batches, AnExistingSchedulerSpreadsTheParts) {
    addCompanies(20);
    const std::vector<std::string> work{kProgram, "drucken",      "KalkKo",   "-d",         database(), "-f",
                                        "alle",   "--druckdatum", "1.1.2025", "--prozesse", "1"};
    auto whole = work;
    whole.insert(whole.end(), {"--nach", output("ganz")});
    run(whole, environment);
    auto parts = work;
    parts.insert(parts.begin(), {"parallel", "--will-cite", "-j2"});
    parts.insert(parts.end(), {"--nach", output("teile"), "--teil", "{}/5", ":::", "1", "2", "3", "4", "5"});
    const auto outcome = run(parts, environment);
    EXPECT_EQ(files("ganz").size(), 21u) << outcome.errors;
    EXPECT_TRUE(files("teile") == files("ganz"));
}

// Binders

class Binders : public Batches {
  protected:
    Outcome bind(const std::string& file, const std::vector<std::string>& more) const {
        std::vector<std::string> arguments{"drucken",  "Umsatz",       "KalkKo",     "MitUeber", "-d",
                                           database(), "--druckdatum", "31.12.2024", "--mappe",  output(file)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return kvtdruck(arguments);
    }
    std::string text(const std::string& file, int page) const {
        return run({"pdftotext", "-layout", "-f", std::to_string(page), "-l", std::to_string(page), output(file),
                    "-"})
            .output;
    }
    std::string json(const std::string& file, const std::string& filter) const {
        return run({"jq", "-c", filter}, {}, run({"qpdf", "--json=2", output(file)}).output).output;
    }
};

TEST_F(Binders, HaveACoverContentsAndPagesThatRunThrough) {
    const auto outcome = bind("mappe.pdf", {"-f", "1", "--von", "2023"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(run({"qpdf", "--check", output("mappe.pdf")}).exitCode, 0);
    EXPECT_THAT(text("mappe.pdf", 1), AllOf(HasSubstr("Müller & Söhne GmbH"), HasSubstr("Auswertungen ab 2023"),
                                            HasSubstr("Gedruckt am 31. Dezember 2024")));
    EXPECT_THAT(text("mappe.pdf", 2), ::testing::ContainsRegex("Inhalt(.|\n)*Umsatz +1\n(.|\n)*Kalkulatorische "
                                                               "Kosten +4\n(.|\n)*Mitarbeiter-Übersicht +7\n"));
    const auto pages = std::stoi(json("mappe.pdf", ".pages | length"));
    EXPECT_THAT(text("mappe.pdf", 3), HasSubstr("Seite 1 von " + std::to_string(pages - 2)));
    EXPECT_THAT(text("mappe.pdf", pages), HasSubstr("Seite " + std::to_string(pages - 2) + " von "));
    EXPECT_EQ(json("mappe.pdf", "[.outlines[] | [.title, .destpageposfrom1]]"),
              "[[\"Umsatz\",3],[\"Kalkulatorische Kosten\",6],[\"Mitarbeiter-Übersicht\",9]]\n");
    EXPECT_EQ(json("mappe.pdf", "[.pagelabels[] | [.index, .label[\"/S\"]]]"), "[[0,\"/r\"],[2,\"/D\"]]\n");
}

TEST_F(Binders, EveryLineOfTheContentsLeadsToItsChapter) {
    ASSERT_EQ(bind("mappe.pdf", {"-f", "1", "--von", "2023"}).exitCode, 0);
    const auto links = run({"python3", "-c",
                            "import json,sys\n"
                            "d = json.load(sys.stdin); o = d['qpdf'][1]\n"
                            "v = lambda r: o['obj:' + r]['value']\n"
                            "p = [x['object'] for x in d['pages']]\n"
                            "print([p.index(v(a)['/Dest'][0]) + 1 for a in v(p[1])['/Annots']])"},
                           {}, run({"qpdf", "--json=2", output("mappe.pdf")}).output);
    EXPECT_EQ(links.output, "[3, 6, 9]\n") << links.errors;
}

/// The document's information and the archive's metadata say the same, which is what the cover says.
TEST_F(Binders, SayOfThemselvesWhatTheCoverSays) {
    ASSERT_EQ(bind("mappe.pdf", {"-f", "1", "--von", "2023"}).exitCode, 0);
    const auto info = run({"pdfinfo", output("mappe.pdf")}).output;
    EXPECT_THAT(info, ::testing::ContainsRegex("Title: +Auswertungen ab 2023 – Müller & Söhne GmbH\n"));
    EXPECT_THAT(info, ::testing::ContainsRegex("Subject: +gedruckt am 31.12.2024 "));
    EXPECT_THAT(info, ::testing::ContainsRegex("Author: +Müller & Söhne GmbH\n"));
    const auto archived = run({"pdfinfo", "-meta", output("mappe.pdf")}).output;
    EXPECT_THAT(archived, HasSubstr(">Auswertungen ab 2023 – Müller &amp; Söhne GmbH<"));
    EXPECT_THAT(archived, HasSubstr("<pdfaid:part>3</pdfaid:part>"));
    ASSERT_EQ(bind("einfach.pdf", {"-f", "1", "-j", "2024", "--pdf", "einfach"}).exitCode, 0);
    EXPECT_THAT(run({"pdfinfo", output("einfach.pdf")}).output, HasSubstr("Auswertungen 2024 – Müller"));
}

TEST_F(Binders, SameInputGivesTheSameBytes) {
    addCompanies(1);
    execute("UPDATE firma SET name1 = 'Zweite GmbH' WHERE fnr = 101;");
    ASSERT_EQ(bind("eins.pdf", {"-f", "1,101", "-j", "2024"}).exitCode,
              bind("zwei.pdf", {"-f", "1,101", "-j", "2024"}).exitCode);
    EXPECT_NE(readFile(output("eins.pdf")), "");
    EXPECT_TRUE(readFile(output("eins.pdf")) == readFile(output("zwei.pdf")));
    EXPECT_THAT(text("eins.pdf", 2), AllOf(HasSubstr("Müller & Söhne GmbH"), HasSubstr("Zweite GmbH")));
}

TEST_F(Binders, HoldTheRestOfWhatFails) {
    execute("DELETE FROM kosten;");
    const auto outcome = bind("mappe.pdf", {"-f", "1", "-j", "2024"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Fehler: Nicht in der Mappe (1 von 3):\n  KalkKo, Firma 1, 2024\n"));
    EXPECT_EQ(json("mappe.pdf", "[.outlines[].title]"), "[\"Umsatz\",\"Mitarbeiter-Übersicht\"]\n");
    execute("DELETE FROM umsatz; DELETE FROM mitarbeiter;");
    EXPECT_EQ(bind("leer.pdf", {"-f", "1", "-j", "2024"}).exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(output("leer.pdf")));
}

TEST_F(Binders, OneForEachCompany) {
    addCompanies(1);
    execute("UPDATE firma SET name1 = 'Zweite GmbH' WHERE fnr = 101;");
    bind("{firma}.pdf", {"-f", "1,101", "-j", "2024", "--je", "firma"});
    EXPECT_THAT(text("1.pdf", 1), HasSubstr("Müller & Söhne GmbH"));
    EXPECT_THAT(text("101.pdf", 1), HasSubstr("Zweite GmbH"));
}

// Job files

class JobFile : public Batches {
  protected:
    Outcome printJob(const std::string& text) const {
        writeFile(folder / "auftrag.toml", text);
        return kvtdruck({"drucken", "--auftrag", output("auftrag.toml")});
    }
};

TEST_F(JobFile, HoldsSeveralPrintsWithAnyOption) {
    const auto outcome = printJob(R"(
datenbank = "firma.sqlite" # von diesem Ordner aus
firma = 1
druckdatum = 2024-12-31

[[druck]]
listen = ["Umsatz", "KalkKo"]
jahr = 2024
nach = "aus"

[[druck]]
listen = "MaStKost"
mitarbeiter-von = 5
mitarbeiter-bis = 6
ausgabe = "blätter.pdf"
ausfuehrlich = true
)");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(names(), ElementsAre("KalkKo-1-2024.pdf", "Umsatz-1-2024.pdf"));
    ASSERT_EQ(print("Umsatz", {"-j", "2024", "--druckdatum", "31.12.2024", "-o", output("einzeln.pdf")}).exitCode,
              0);
    EXPECT_TRUE(files().at("Umsatz-1-2024.pdf") == readFile(output("einzeln.pdf")));
    EXPECT_TRUE(std::filesystem::exists(output("blätter.pdf")));
}

TEST_F(JobFile, MistakesAreNamedWithTheirLineBeforeAnythingIsPrinted) {
    const auto file = "Fehler: " + output("auftrag.toml");
    const auto first = std::string("[[druck]]\nlisten = \"Umsatz\"\nfirma = 1\ndatenbank = \"firma.sqlite\"\n"
                                   "nach = \"aus\"\n");
    const auto errors = [&](const std::string& text) {
        const auto outcome = printJob(text);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_THAT(names(), IsEmpty());
        return outcome.errors;
    };
    EXPECT_THAT(errors(first + "[[druck]]\njahre = 2024\n"),
                HasSubstr(file + ", Zeile 7: „jahre“ gibt es nicht – gemeint ist vielleicht „jahr“."));
    EXPECT_THAT(errors(first + "[[druck]]\nlisten = \"Umsatz\"\njahr = \"bald\"\n"),
                HasSubstr(file + ", Druck in Zeile 6: --jahr: „bald“ ist keine ganze Zahl von 1 bis 9999."));
    EXPECT_THAT(errors(first + "jahr = 1.5\n"),
                HasSubstr(file + ", Zeile 6: „jahr“ braucht einen Text, eine ganze"));
    EXPECT_THAT(errors("firma = 1\nfirma = \n"), HasSubstr(file + ", Zeile 2: Das ist kein gültiges TOML"));
    EXPECT_THAT(errors("firma = 1\n"), HasSubstr(file + ": Es fehlt [[druck]]; jeder Druck beginnt damit."));
}

TEST_F(JobFile, TheExampleIsOne) {
    std::filesystem::copy_file(KVT_SOURCE_FOLDER "/demo/monatsabschluss.toml", folder / "auftrag.toml");
    std::filesystem::copy_file(database(), folder / "musterbau.sqlite");
    std::filesystem::copy(KVT_SOURCE_FOLDER "/demo/werte", folder / "werte");
    const auto outcome = kvtdruck({"drucken", "--auftrag", output("auftrag.toml")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(names("monatsabschluss"), Not(IsEmpty()));
}

TEST_F(JobFile, TheUsersSettingsStandBehindTheEnvironment) {
    environment["XDG_CONFIG_HOME"] = output("config");
    std::filesystem::create_directories(folder / "config" / "kvtdruck");
    const auto settings = folder / "config" / "kvtdruck" / "kvtdruck.toml";
    writeFile(settings, "datenbank = \"" + database() + "\"\nfirma = 99\n");
    EXPECT_THAT(kvtdruck({"drucken", "Umsatz", "-o", output("l.pdf")}).errors, HasSubstr("für die Firma 99"));
    environment["KVTDRUCK_FIRMA"] = "1";
    EXPECT_EQ(kvtdruck({"drucken", "Umsatz", "-o", output("l.pdf")}).exitCode, 0);
    writeFile(settings, "datenbnak = \"x\"\n");
    EXPECT_THAT(
        kvtdruck({"listen"}).errors,
        HasSubstr("kvtdruck.toml, Zeile 1: „datenbnak“ gibt es nicht – gemeint ist vielleicht „datenbank“."));
}

// The processes

TEST(Workers, AWorkThatCrashesTakesNoOtherAlong) {
    std::map<std::size_t, cli::WorkResult> results;
    cli::shareWork(
        6, 2,
        [](std::size_t work) {
            if (work == 2)
                ::raise(SIGKILL);
            std::cout << "aus " << work << std::flush;
            std::cerr << "fehler " << work << std::flush;
            return int(work);
        },
        [&](const cli::WorkResult& result) { results[result.work] = result; });
    ASSERT_EQ(results.size(), 6u);
    EXPECT_EQ(results[5].exitCode, 5);
    EXPECT_EQ(results[5].output, "aus 5");
    EXPECT_EQ(results[5].errors, "fehler 5");
    EXPECT_EQ(results[2].exitCode, 1);
    EXPECT_EQ(results[2].errors, "Fehler: Der Druck ist abgestürzt (Signal 9).\n");
}

} // namespace
} // namespace kvtdruck::testing
