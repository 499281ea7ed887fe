// The same company in SQLite and in a PostgreSQL server gives the same record of engine calls.
#include "cli/many_companies.h"
#include "cli/program_fixture.h"
#include "kvtzug/postgres_server.h"

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

  private:
    test::PostgresServer server_;
};

class Databases : public HostTest {
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
    parts.insert(parts.begin(), {"parallel", "--will-cite", "-j2", KVT_PROGRAM});
    parts.insert(parts.end(), {"--nach", output("teile"), "--teil", "{}/4", ":::", "1", "2", "3", "4"});
    const auto outcome = run(parts, environment);
    EXPECT_EQ(outcome.exitCode, 1) << outcome.errors;
    const auto difference = run({"diff", "-r", output("ganz"), output("teile")});
    EXPECT_EQ(difference.output + difference.errors, "");
    EXPECT_EQ(run({"sh", "-c", "ls " + output("teile") + " | wc -l"}).output, "21\n");
}

} // namespace
} // namespace kvtdruck::testing
