// An SQLite database in a file of its own.
#pragma once

#include "kvtzug/database.h"

#include <filesystem>

namespace kvtdruck::test {

class SqliteDatabase : public Database {
  public:
    String connectionString() const override;
    bool takesWideSql() const override { return false; }
    bool holdsNaN() const override { return false; }
    std::filesystem::path file() const { return folder_.path() / "test.sqlite"; }

  private:
    TemporaryFolder folder_;
};

} // namespace kvtdruck::test
