// The same company in SQLite and in a PostgreSQL server gives the same record of engine calls.
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

} // namespace
} // namespace kvtdruck::testing
