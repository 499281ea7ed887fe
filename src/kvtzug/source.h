// Where rows come from: a connection to a database, and queries on it. The readers know no more of a database than
// this; SQLite files are read by SQLite itself (sqlite.h), everything else through ODBC (odbc.h).
#pragma once

#include "values/text.h"
#include "values/variant.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace kvtdruck {

/// The error number that ADO shows for an error of the data source (E_FAIL).
inline constexpr long kDataSourceError = -2147467259;

/// A value that is bound to a query.
using Parameter = std::variant<double, Date, String>;

/// The calendar day of a date.
std::chrono::year_month_day dayOf(Date date);

/// What a column is read as.
enum class CellType { Number, Date, Text };

/// One prepared query, to be executed as often as needed. Errors are run-time errors -2147467259 with a German
/// sentence. It keeps its connection open.
class Query {
  public:
    Query() = default;
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    virtual ~Query() = default;

    /// Begins with the first row again, with these parameters.
    virtual void execute(std::span<const Parameter> parameters) = 0;

    /// Goes to the next row, at first to the first one; false where there is none.
    virtual bool step() = 0;

    /// The cell of the current row in column `index` (from 0), which must have been announced with the type;
    /// nothing for NULL. A text is valid until the next call.
    virtual std::optional<double> number(std::size_t index) = 0;
    virtual std::optional<Date> date(std::size_t index) = 0;
    virtual std::optional<StringView> text(std::size_t index) = 0;

    /// Ends the execution, so that no lock is held. False where its rows can't be relied on and the query is to be
    /// executed again.
    virtual bool finish() = 0;
};

/// A column of a table or view as the data source describes it.
struct SourceColumn {
    String name;
    std::optional<CellType> type; ///< nothing where the source knows none, or one of another kind
};

/// One open connection, shared by its readers. Who uses it on several threads keeps `inUse` locked for as long as a
/// query of it is executed, made or destroyed.
class Connection {
  public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    virtual ~Connection() = default;

    /// A query of columns of these types. `sentence` begins its error messages.
    virtual std::unique_ptr<Query> query(String sentence, StringView sql, std::vector<CellType> columns) = 0;

    /// The columns of a table or view. Run-time error -2147467259 with the source's own words where it can't be
    /// read.
    virtual std::vector<SourceColumn> columnsOf(StringView table) = 0;

    /// How this source turns a column's text into a number, in SQL.
    virtual String asNumber(StringView column) const = 0;

    /// Whether the data source is still held for reachable.
    virtual bool alive() const = 0;

    /// Whether rows may be fetched beside the thread that uses them.
    virtual bool readsAhead() const { return false; }

    std::recursive_mutex& inUse() { return inUse_; }

  private:
    std::recursive_mutex inUse_;
};

/// Set where the user has asked to stop: whatever waits or runs ends with an error then. May be nullptr.
using Cancellation = const std::atomic<bool>*;

/// Opens the data source that `connectionString` names: an SQLite file where the driver is "SQLite3" or "SQLite"
/// (on Windows through ODBC like every other one), else whatever ODBC reaches. Run-time error -2147467259 with a
/// German sentence on failure; a password never shows up in it.
std::shared_ptr<Connection> openConnection(StringView connectionString, Cancellation cancelled);

/// The connection string of an SQLite database file, whose name may hold any character.
String sqliteConnection(StringView file);

} // namespace kvtdruck
