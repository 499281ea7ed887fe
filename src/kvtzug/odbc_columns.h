// The buffers into which ODBC fetches several rows at once, column by column.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include "kvtzug/source.h"

#include <cstddef>
#include <vector>

namespace kvtdruck {

class OdbcColumns {
  public:
    struct Column {
        SQLSMALLINT type;  ///< of the buffer
        std::size_t width; ///< bytes of a row
        std::vector<std::byte> values;
        std::vector<SQLLEN> lengths;
    };

    explicit OdbcColumns(const std::vector<CellType>& types);

    std::size_t count() const { return columns_.size(); }
    Column& operator[](std::size_t index) { return columns_[index]; }

    /// Rows that the buffers hold: as many as fit into about a megabyte.
    std::size_t rows() const { return rows_; }

    /// Whether every text of the first `rows` rows fitted into its buffer; remembers which did not.
    bool holds(std::size_t rows);
    /// Makes room for the texts that did not fit; gives whether there were any. The buffers have moved then.
    bool widen();

    // The cell of a row; nothing for NULL.
    std::optional<double> number(std::size_t column, std::size_t row) const;
    std::optional<Date> date(std::size_t column, std::size_t row) const;
    std::optional<StringView> text(std::size_t column, std::size_t row) const;

  private:
    void allocate();

    std::vector<Column> columns_;
    std::vector<std::size_t> needed_; ///< by column: the width that its widest text so far takes
    std::size_t rows_ = 0;
};

} // namespace kvtdruck
