// The suite against SQLite once more, through its ODBC driver.
#include "kvtzug/sqlite_database.h"

namespace kvtdruck::test {
namespace {

class OdbcSqliteDatabase : public SqliteDatabase {
  public:
    String connectionString() const override { return writingConnectionString(); }
};

} // namespace

std::unique_ptr<Database> createDatabase() {
    return std::make_unique<OdbcSqliteDatabase>();
}

} // namespace kvtdruck::test
