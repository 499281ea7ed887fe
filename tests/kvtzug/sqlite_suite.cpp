// The suite of readers_test.cpp against SQLite.
#include "kvtzug/sqlite_database.h"

namespace kvtdruck::test {

std::unique_ptr<Database> createDatabase() {
    return std::make_unique<SqliteDatabase>();
}

} // namespace kvtdruck::test
