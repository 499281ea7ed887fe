// The suite of readers_test.cpp against a PostgreSQL server, which is started once.
#include "kvtzug/postgres_server.h"

namespace kvtdruck::test {
namespace {

class PostgresDatabase : public Database {
  public:
    PostgresDatabase() { execute("DROP SCHEMA public CASCADE;\nCREATE SCHEMA public;\n"); }

    String connectionString() const override {
        static const PostgresServer server;
        return server.connectionString();
    }
    bool takesWideSql() const override { return true; }
    bool holdsNaN() const override { return true; }
};

} // namespace

std::unique_ptr<Database> createDatabase() {
    return std::make_unique<PostgresDatabase>();
}

} // namespace kvtdruck::test
