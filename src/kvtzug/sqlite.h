// SQLite files, read by SQLite's own library: read only, by their name as it is, without a driver.
#pragma once

#include "kvtzug/numeric_keys.h"
#include "kvtzug/source.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

struct sqlite3;

namespace kvtdruck {

/// Steps of SQLite's virtual machine between two looks at a cancellation: well below a millisecond.
constexpr int kStepsBetweenLooks = 10000;

class SqliteConnection : public Connection, public std::enable_shared_from_this<SqliteConnection> {
  public:
    /// Opens `file`, which must exist; nothing is ever written, and no file created. Where another program has
    /// locked the database, a query waits up to `patience`.
    SqliteConnection(StringView file, std::chrono::milliseconds patience, Cancellation cancelled);
    ~SqliteConnection() override;

    std::unique_ptr<Query> query(String sentence, StringView sql, std::vector<CellType> columns) override;
    std::vector<SourceColumn> columnsOf(StringView table) override;
    String asNumber(StringView column) const override;
    bool alive() const override { return true; }
    bool readsAhead() const override { return std::thread::hardware_concurrency() > 1; }

    sqlite3* handle() const { return database_; }

    /// Tells one opening of the file from the next: `handle` and all that was prepared on it belong to one.
    unsigned opening() const { return opening_; }

    /// Whether everything read since the database was opened came from one state of it. False where it was opened
    /// as unchangeable and somebody has written it all the same; it is opened anew then.
    bool holds();

    /// Raises `sentence` with the reason that belongs to a result of SQLite.
    [[noreturn]] void raise(const String& sentence, int result) const;

  private:
    /// What tells that a file has been written.
    struct Stamp {
        std::filesystem::file_time_type written;
        std::uintmax_t size = 0;
        bool operator==(const Stamp&) const = default;
    };

    void check() const;
    void open();
    Stamp stamp() const;
    bool hasLog() const;
    bool isCancelled() const { return cancelled_ != nullptr && *cancelled_; }
    static int onProgress(void* self);
    static int onBusy(void* self, int attempt);

    String name_;
    std::filesystem::path path_;
    std::chrono::milliseconds patience_;
    Cancellation cancelled_;
    bool unchangeable_ = false;
    Stamp opened_;
    unsigned opening_ = 0;
    sqlite3* database_ = nullptr;
    NumericKeys keys_{*this};
};

} // namespace kvtdruck
