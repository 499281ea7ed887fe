// Databases for the tests of the reference data access: a fresh one per test, filled through ODBC.
#pragma once

#include "platform/posix/temporary_folder.h"
#include "values/text.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace kvtdruck::test {

/// An empty database.
class Database {
  public:
    Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    virtual ~Database() = default;

    /// What readers connect with.
    virtual String connectionString() const = 0;
    /// What the tests themselves connect with, through ODBC.
    virtual String writingConnectionString() const { return connectionString(); }
    /// A NaN and an infinity in SQL; "" where a number column can't hold one.
    virtual std::string nan() const { return ""; }
    virtual std::string infinity() const { return ""; }
    /// The longest text that a TEXT column holds and that is worth a test.
    virtual std::size_t longestText() const { return 1000010; }
    /// Whether the driver takes SQL as UTF-16; else it takes UTF-8.
    virtual bool takesWideSql() const = 0;
    /// Executes statements that end in ";" at the end of a line.
    void execute(std::string_view text) const;
    /// Executes demo/<name>.
    void executeDemoFile(const char* name) const;

  protected:
    void executeOn(StringView connectionString, std::string_view text) const;
};

/// A new database of the kind that the test program is about.
std::unique_ptr<Database> createDatabase();

} // namespace kvtdruck::test
