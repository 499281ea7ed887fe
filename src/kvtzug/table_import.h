// Rows into a table of an embedded (SQLite) database.
#pragma once

#include "kvtzug/schema.h"
#include "kvtzug/source.h"

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace kvtdruck {

/// All rows come in, or none: without `commit` the database is as it was, and a new one is not there. Every
/// operation may throw a `std::runtime_error` with a German message in UTF-8; after one of `put` the others go on.
class TableImport {
  public:
    /// Nothing, a number, or a text; dates are texts ("2024-12-31").
    using Value = std::variant<std::monostate, double, std::string>;
    enum class Effect { Added, Changed };

    /// Opens `file` for rows of `table` that have these columns, all keys among them. `creates` makes the database
    /// and the tables that are missing. Where `tries` is set, nothing is ever kept.
    TableImport(const std::filesystem::path& file, const SchemaTable& table, std::vector<std::string> columns,
                bool creates, bool tries, Cancellation cancelled);
    TableImport(const TableImport&) = delete;
    TableImport& operator=(const TableImport&) = delete;
    ~TableImport();

    /// Adds the row, or changes the one that has its keys; columns that are not among those named stay as they are.
    Effect put(const std::vector<Value>& row);
    void commit();

  private:
    void open(const std::filesystem::path& file, bool creates, bool tries);
    void prepareTables(bool creates);
    void prepareStatements();
    void close();
    sqlite3_stmt* prepare(const std::string& sql);
    void execute(const std::string& sql);
    bool step(sqlite3_stmt* statement, const std::vector<Value>& row);
    [[noreturn]] void raise(int result) const;

    const SchemaTable& table_;
    std::vector<std::string> columns_;
    Cancellation cancelled_;
    bool tries_;
    std::filesystem::path created_; ///< the new file; empty where there was one
    sqlite3* database_ = nullptr;
    sqlite3_stmt* exists_ = nullptr;
    sqlite3_stmt* update_ = nullptr; ///< nullptr where the keys are all
    sqlite3_stmt* insert_ = nullptr;
};

} // namespace kvtdruck
