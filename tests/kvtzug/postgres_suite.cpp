// The suite of readers_test.cpp against a PostgreSQL server, which is started once.
#include "kvtzug/postgres_server.h"

// The driver itself loses a few bytes for every statement that the server refuses.
#ifdef __clang__
#pragma clang diagnostic ignored "-Wreserved-identifier" // the sanitizer's names
#endif
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:psqlodbcw.so";
}

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
    std::string nan() const override { return "'NaN'"; }
    std::string infinity() const override { return "'Infinity'"; }
};

} // namespace

std::unique_ptr<Database> createDatabase() {
    return std::make_unique<PostgresDatabase>();
}

} // namespace kvtdruck::test
