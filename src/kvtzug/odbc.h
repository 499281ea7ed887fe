// ODBC as a source of rows. Only the wide functions are used, so text stays UTF-16 as everywhere in the component,
// on unixODBC as on Windows.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include "kvtzug/numeric_keys.h"
#include "kvtzug/source.h"

namespace kvtdruck {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "ODBC text must be UTF-16");

class OdbcConnection : public Connection, public std::enable_shared_from_this<OdbcConnection> {
  public:
    /// Opens the data source. What keeps SQLite's driver from creating a missing database is added where the string
    /// does not say otherwise.
    explicit OdbcConnection(StringView connectionString);
    ~OdbcConnection() override;

    std::unique_ptr<Query> query(String sentence, StringView sql, std::vector<CellType> columns) override;
    std::vector<SourceColumn> columnsOf(StringView table) override;
    String asNumber(StringView column) const override;
    /// Whether the driver still holds the data source for reachable.
    bool alive() const override;

    SQLHDBC handle() const { return connection_; }

  private:
    bool open(StringView connectionString);
    void release() noexcept;

    SQLHENV environment_ = nullptr;
    SQLHDBC connection_ = nullptr;
    NumericKeys keys_{*this};
};

} // namespace kvtdruck
