// ODBC as the readers need it: one connection that its readers share, and statements on it. Only the wide functions
// are used, so text stays UTF-16 as everywhere in the component, on unixODBC as on Windows.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include "values/text.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace kvtdruck {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "ODBC text must be UTF-16");

/// The error number that ADO shows for an error of the data source (E_FAIL).
inline constexpr long kDataSourceError = -2147467259;

/// The value of `name` in an ODBC connection string (letter case of the name does not matter), or "".
String connectionAttribute(StringView connectionString, StringView name);

/// A value that is bound to a statement, in the form that ODBC takes it: a text, a double or a date.
struct Parameter {
    explicit Parameter(StringView text);
    explicit Parameter(double number);
    /// A value as a column's buffer holds it.
    Parameter(SQLSMALLINT type, std::span<const std::byte> value);

    bool operator==(const Parameter&) const = default;

    SQLSMALLINT type;
    std::vector<std::byte> bytes;
};

/// One open connection. All calls on it come on one thread.
class Connection {
  public:
    /// Opens the data source. Settings that keep a driver's memory flat, or that keep it from creating a missing
    /// database, are added where the string does not set them itself. Run-time error -2147467259 with a German
    /// sentence and the driver's message on failure; a password never shows up in it.
    explicit Connection(StringView connectionString);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    SQLHDBC handle() const { return connection_; }
    /// Whether the driver still holds the data source for reachable.
    bool alive() const;

  private:
    bool open(StringView connectionString);
    void release() noexcept;

    SQLHENV environment_ = nullptr;
    SQLHDBC connection_ = nullptr;
};

/// One statement with bound parameters. Errors are raised with the sentence that the statement was given, followed
/// by the driver's message.
class Statement {
  public:
    Statement(std::shared_ptr<Connection> connection, String sentence, StringView sql,
              std::vector<Parameter> parameters);
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    /// Binds a column's buffer of `width` bytes a row.
    void bindColumn(SQLUSMALLINT number, SQLSMALLINT type, std::byte* values, std::size_t width, SQLLEN* lengths);
    /// Executes the statement and fetches up to `rows` rows into the columns' buffers; gives how many came.
    std::size_t fetch(std::size_t rows);

  private:
    void bindParameter(SQLUSMALLINT number, Parameter& parameter);
    void set(SQLINTEGER attribute, SQLPOINTER value);
    void check(SQLRETURN result) const;

    std::shared_ptr<Connection> connection_;
    String sentence_;
    std::vector<Parameter> parameters_;
    std::vector<SQLLEN> lengths_;
    SQLHSTMT statement_ = nullptr;
};

} // namespace kvtdruck
