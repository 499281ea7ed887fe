// Databases of one's own: the sample company in a PostgreSQL server, and the foreign one that the guide leads from
// its tables to the first page.
#include "cli/many_companies.h"
#include "cli/program_fixture.h"
#include "kvtzug/mariadb_server.h"
#include "kvtzug/postgres_server.h"

#include <gmock/gmock.h>

namespace kvtdruck::testing {
namespace {

/// The server with the sample company, started once.
class SampleServer : public test::Database {
  public:
    SampleServer() {
        executeDemoFile("schema.sql");
        executeDemoFile("daten.sql");
    }

    String connectionString() const override { return server_.connectionString(); }
    bool takesWideSql() const override { return true; }
    std::size_t connectionsMade() const { return server_.connectionsMade(); }

  private:
    test::PostgresServer server_;
};

class Databases : public ProgramTest {
  protected:
    std::string recordOf(const std::string& list, const std::vector<std::string>& source) const {
        std::vector<std::string> arguments{"drucken", list,        "--firma",       "1",           "--jahr",
                                           "2024",    "--ausgabe", output("l.pdf"), "--protokoll", output("l.txt")};
        arguments.insert(arguments.end(), source.begin(), source.end());
        const auto outcome = kvtdruck(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        return readFile(output("l.txt"));
    }
};

TEST_F(Databases, GiveTheSameRecordOfEngineCalls) {
    const SampleServer server;
    for (const std::string list : {"Umsatz", "Firma", "GemeinK", "NeutralA", "KalkKo", "MatUeber"}) {
        SCOPED_TRACE(list);
        const auto record = recordOf(list, {"--datenbank", database()});
        EXPECT_NE(record.find("LlPrintEnd(0) = 0"), std::string::npos);
        EXPECT_EQ(recordOf(list, {"--verbindung", toUtf8(server.connectionString())}), record);
    }
}

/// The years that exist are read before the print, over the same connection.
TEST_F(Databases, ADocumentTakesOneConnection) {
    const SampleServer server;
    for (const std::string list : {"Umsatz", "GemeinK", "KalkKo", "MaStKost"}) {
        const auto before = server.connectionsMade();
        const auto outcome = kvtdruck({"drucken", list, "--verbindung", toUtf8(server.connectionString()), "-f",
                                       "1", "--von", "2023", "-o", output("l.pdf")});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(server.connectionsMade() - before, 1U) << list;
    }
}

/// Several programs, as on several machines, print from one server what one program prints from a file.
TEST_F(Databases, AnExistingSchedulerSpreadsTheWorkOverOneServer) {
    SampleServer server;
    server.execute(manyCompanies(20));
    execute(manyCompanies(20));
    const std::vector<std::string> work{"drucken",      "KalkKo",   "-f",         "alle",
                                        "--druckdatum", "1.1.2025", "--prozesse", "1"};
    auto whole = work;
    whole.insert(whole.end(), {"-d", database(), "--nach", output("ganz")});
    ASSERT_EQ(kvtdruck(whole).exitCode, 1) << "the second company of the sample has no costs";
    environment["KVTDRUCK_VERBINDUNG"] = toUtf8(server.connectionString());
    auto parts = work;
    parts.insert(parts.begin(), {"parallel", "--will-cite", "-j2", kProgram});
    parts.insert(parts.end(), {"--nach", output("teile"), "--teil", "{}/4", ":::", "1", "2", "3", "4"});
    const auto outcome = run(parts, environment);
    EXPECT_EQ(outcome.exitCode, 1) << outcome.errors;
    const auto difference = run({"diff", "-r", output("ganz"), output("teile")});
    EXPECT_EQ(difference.output + difference.errors, "");
    EXPECT_EQ(run({"sh", "-c", "ls " + output("teile") + " | wc -l"}).output, "21\n");
}

class EmptyPostgres : public test::Database {
  public:
    String connectionString() const override { return server_.connectionString(); }
    bool takesWideSql() const override { return true; }

  private:
    test::PostgresServer server_;
};

class EmptyMariadb : public test::Database {
  public:
    EmptyMariadb() { executeOn(server_.connectionString(), "CREATE DATABASE erp CHARACTER SET utf8mb4;\n"); }
    String connectionString() const override { return server_.connectionString(u"erp"); }
    bool takesWideSql() const override { return true; }

  private:
    test::MariadbServer server_;
};

/// The pieces of SQL in the guide, in their order.
std::vector<std::string> sqlOfTheGuide() {
    const auto guide = readFile(std::filesystem::path(KVT_SOURCE_FOLDER) / "docs" / "eigene-datenbank.md");
    const std::string begin = "```sql\n";
    std::vector<std::string> pieces;
    for (auto at = guide.find(begin); at != std::string::npos; at = guide.find(begin, at)) {
        at += begin.size();
        pieces.push_back(guide.substr(at, guide.find("```", at) - at));
    }
    return pieces;
}

class Guide : public Databases {
  protected:
    /// From the foreign tables to the first page, as the guide says.
    void follow(const test::Database& database, const std::string& product) const {
        const auto source = toUtf8(database.connectionString());
        const auto pieces = sqlOfTheGuide();
        ASSERT_EQ(pieces.size(), 3u);
        database.execute(pieces[0]);
        database.execute(kvtdruck({"datenbank", "vorlage", product}).output);
        const auto empty = kvtdruck({"datenbank", "pruefen", "--verbindung", source});
        EXPECT_EQ(empty.exitCode, 0) << empty.output << empty.errors;
        EXPECT_THAT(empty.output, ::testing::HasSubstr("  konten              leer\n"));
        EXPECT_THAT(empty.output, ::testing::HasSubstr("  GemeinK             nicht druckbar: firma ist leer\n"));
        database.execute(pieces[1]);
        database.execute(pieces[2]);
        const auto full = kvtdruck({"datenbank", "pruefen", "--verbindung", source});
        EXPECT_EQ(full.exitCode, 0) << full.output << full.errors;
        EXPECT_THAT(full.output, ::testing::HasSubstr("  konten              in Ordnung\n"));
        EXPECT_THAT(full.output, ::testing::HasSubstr("  GemeinK             druckbar\n"));
        EXPECT_THAT(full.output, ::testing::HasSubstr("  NeutralA            druckbar\n"));
        EXPECT_THAT(full.output, ::testing::HasSubstr("  Umsatz              nicht druckbar: umsatz ist leer\n"));
        EXPECT_EQ(kvtdruck({"firmen", "--verbindung", source}).output, "7\tTischlerei Grün\tLeipzig\n");
        const auto page = kvtdruck({"drucken", "GemeinK", "--verbindung", source, "-f", "7", "-j", "2024", "-m",
                                    "3", "-o", output("g.pdf")});
        EXPECT_EQ(page.exitCode, 0) << page.errors;
        const auto text = run({"pdftotext", "-layout", output("g.pdf"), "-"}).output;
        for (const std::string words : {"Tischlerei Grün", "04109 Leipzig", "Fahrzeuge", "300,00", "3.600,00"})
            EXPECT_THAT(text, ::testing::HasSubstr(words));
        EXPECT_THAT(text, ::testing::Not(::testing::HasSubstr("Zinserträge")));
    }
};

TEST_F(Guide, LeadsFromForeignTablesToAPageWithPostgres) {
    follow(EmptyPostgres(), "postgresql");
}

TEST_F(Guide, LeadsFromForeignTablesToAPageWithMariadb) {
    follow(EmptyMariadb(), "mariadb");
}

} // namespace
} // namespace kvtdruck::testing
