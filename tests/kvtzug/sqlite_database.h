// An SQLite database in a file of its own.
#pragma once

#include "kvtzug/database.h"

#include <filesystem>

namespace kvtdruck::test {

class SqliteDatabase : public Database {
  public:
    SqliteDatabase();

    String connectionString() const override;
    bool takesWideSql() const override { return false; }
    String writingConnectionString() const override;
    std::string infinity() const override { return "9e999"; }
    std::filesystem::path file() const { return folder_.path() / "test.sqlite"; }

  private:
    TemporaryFolder folder_;
};

} // namespace kvtdruck::test
