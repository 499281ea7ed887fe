#include "cli/cups_server.h"
#include "cli/program_fixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdio>

namespace kvtdruck::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// One print service for all tests of this program.
CupsServer& cups() {
    static CupsServer server;
    return server;
}

class PrintingTest : public ProgramTest {
  protected:
    PrintingTest() { environment["CUPS_SERVER"] = cups().address(); }

    static int jobOf(const Outcome& outcome) {
        int job = 0;
        EXPECT_EQ(std::sscanf(outcome.output.c_str() + outcome.output.find("Auftrag "), "Auftrag %d", &job), 1)
            << outcome.output << outcome.errors;
        return job;
    }
    static bool isCompleted(int job) {
        return waitUntil([=] { return cups().jobAttribute(job, "job-state") == "completed"; });
    }
};

TEST_F(PrintingTest, PrintsOnTheDefaultPrinter) {
    const auto outcome = print("Umsatz", {"--jahr", "2023"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("an „Buero“ übergeben."));
    ASSERT_TRUE(isCompleted(jobOf(outcome)));
    EXPECT_EQ(run({"qpdf", "--check", cups().printed().string()}).exitCode, 0);
    EXPECT_THAT(run({"pdftotext", cups().printed().string(), "-"}).output, HasSubstr("Müller & Söhne"));
}

TEST_F(PrintingTest, JobCarriesTitleAndOptions) {
    const auto outcome = print("Umsatz", {"--drucker", "Buero", "--exemplare", "3", "--seiten", "1-2,4",
                                          "--beidseitig", "lang", "--fach", "tray-2"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    const auto job = jobOf(outcome);
    EXPECT_THAT(cups().jobAttribute(job, "job-name"), HasSubstr("Umsatz"));
    EXPECT_EQ(cups().jobAttribute(job, "copies"), "3");
    EXPECT_EQ(cups().jobAttribute(job, "page-ranges"), "1-2,4-4");
    EXPECT_EQ(cups().jobAttribute(job, "sides"), "two-sided-long-edge");
    EXPECT_EQ(cups().jobAttribute(job, "media-source"), "tray-2");
}

TEST_F(PrintingTest, AStoppedPrinterTakesTheJobAndTheUserIsTold) {
    const auto outcome = print("Umsatz", {"--drucker", "Lager"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("Der Drucker „Lager“ ist angehalten; der Auftrag wartet."));
}

TEST_F(PrintingTest, ErrorsOfThePrinterAreReported) {
    const auto refused = print("Umsatz", {"--drucker", "Defekt"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.errors,
                HasSubstr("Drucken auf „Defekt“ nicht möglich: der Drucker nimmt keine Aufträge an"));

    const auto unknown = print("Umsatz", {"--drucker", "Keller"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.errors, HasSubstr("Der Drucker „Keller“ ist nicht eingerichtet."));

    environment["CUPS_SERVER"] = "127.0.0.1:1";
    const auto unreachable = print("Umsatz", {});
    EXPECT_EQ(unreachable.exitCode, 1);
    EXPECT_THAT(unreachable.errors, HasSubstr("der Druckdienst (CUPS) ist nicht erreichbar"));
}

TEST_F(PrintingTest, DialogNumbersThePrintersAndTheFile) {
    const auto outcome = print("Umsatz", {"--druckerauswahl"}, "9\n0\n");
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_THAT(outcome.output, StartsWith("Wohin soll die Liste „Umsatz“ gedruckt werden?\n"
                                           "  1  Buero – Drucker im Büro (Standarddrucker)\n"
                                           "  2  Defekt\n"
                                           "  3  Lager\n"
                                           "  4  PDF-Datei\n"
                                           "  0  Abbrechen\n"
                                           "Auswahl [1]: Bitte eine Zahl von 0 bis 4 eingeben.\n"));
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(PrintingTest, DialogChoosesAPrinterOrAFile) {
    EXPECT_THAT(print("Umsatz", {"--druckerauswahl"}, "3\n").output, HasSubstr("an „Lager“ übergeben."));
    EXPECT_THAT(print("Umsatz", {"--druckerauswahl"}, "\n").output, HasSubstr("an „Buero“ übergeben."));

    const auto file = print("Umsatz", {"--druckerauswahl"}, "4\n" + output("gewählt.pdf") + "\n");
    EXPECT_EQ(file.exitCode, 0) << file.errors;
    EXPECT_EQ(run({"qpdf", "--check", output("gewählt.pdf")}).exitCode, 0);
}

TEST_F(PrintingTest, DialogIsCancelledByTheEndOfInputAndByCtrlC) {
    EXPECT_EQ(print("Umsatz", {"--druckerauswahl"}).exitCode, 130);

    Program program(command("drucken", "Umsatz", {"--druckerauswahl"}), environment);
    // The question is asked once the dialog waits.
    ASSERT_TRUE(waitUntil([&] { return program.output().find("Auswahl") != std::string::npos; }));
    program.signal(SIGINT);
    EXPECT_EQ(program.wait().exitCode, 130);
}

} // namespace
} // namespace kvtdruck::testing
