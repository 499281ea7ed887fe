#include "kvtzug/sqlite_database.h"

#include "kvtzug/kvtzug.h"

#include <fstream>

namespace kvtdruck::test {

String SqliteDatabase::connectionString() const {
    // An empty file is an empty database; the reader itself creates none.
    const std::ofstream created(file(), std::ios::app);
    return sqliteConnection(fromUtf8(file().string()));
}

} // namespace kvtdruck::test
