// The rows in hand: one block of a query's rows, so that a value is found by row and column alone.
#pragma once

#include "kvtzug/reader_class.h"
#include "kvtzug/source.h"

#include <cstddef>
#include <vector>

namespace kvtdruck {

/// One block of rows. It is as long as about a megabyte takes, so memory stays flat.
class Rowset {
  public:
    /// A block has at most `atOnce` rows.
    Rowset(const std::vector<Column>& columns, std::size_t atOnce);

    /// Rows that a block has at most; it has fewer where texts are long.
    std::size_t most() const { return most_; }

    /// Takes the rows of `query`, whose columns are the columns `selection`, in that order. What the other columns
    /// give has no meaning from then on.
    void fill(Query& query, const std::vector<std::size_t>& selection);
    void clear();

    std::size_t rows() const { return rows_; }
    /// Whether `fill` took the last row.
    bool isLast() const { return last_; }

    /// The value of a column in a row of the block. A NULL is the type's zero, or Null for an optional date.
    void read(std::size_t column, std::size_t row, Variant& value) const;

    /// The value of a key's column in a row of the block, for a query that goes on from there.
    Parameter parameter(std::size_t column, std::size_t row) const;

    /// What a column gives where there is no record.
    Variant nothing(std::size_t column) const { return nothing(types_[column]); }

  private:
    /// A number, a date's days, or where in `texts_` the text lies.
    struct Cell {
        enum class Content : std::uint8_t { Nothing, Number, Text } content;
        std::uint32_t length; ///< of the text
        union {
            double number;
            std::size_t begin; ///< of the text
        };
    };

    Cell cellOf(Query& query, std::size_t index, ColumnType type);
    const Cell& cell(std::size_t column, std::size_t row) const { return cells_[row * types_.size() + column]; }
    StringView textOf(const Cell& cell) const { return StringView(texts_).substr(cell.begin, cell.length); }
    static Variant nothing(ColumnType type);

    std::vector<ColumnType> types_;
    std::size_t most_;
    std::vector<Cell> cells_;
    String texts_;
    std::size_t rows_ = 0;
    bool last_ = true;
};

/// As what a query reads a column.
CellType cellTypeOf(ColumnType type);

} // namespace kvtdruck
