#include "kvtzug/sqlite_database.h"

#include "kvtzug/kvtzug.h"

#include <fstream>

namespace kvtdruck::test {

SqliteDatabase::SqliteDatabase() {
    // An empty file is an empty database; the reader itself creates none.
    const std::ofstream created(file());
}

String SqliteDatabase::connectionString() const {
    return sqliteConnection(fromUtf8(file().string()));
}

String SqliteDatabase::writingConnectionString() const {
    return u"Driver={" + fromUtf8(KVT_SQLITE_ODBC) + u"};Database=" + fromUtf8(file().string());
}

} // namespace kvtdruck::test
