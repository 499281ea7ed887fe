// The rows in hand: one block of a result, bound column by column, so that a value is found by row and column
// alone.
#pragma once

#include "kvtzug/odbc.h"
#include "kvtzug/reader_class.h"

#include <cstddef>
#include <vector>

namespace kvtdruck {

/// Buffers for one block of rows. The block's size follows from the width of a row, so memory stays flat.
class Rowset {
  public:
    /// A block has `most` rows, or fewer where rows are wide.
    Rowset(const std::vector<Column>& columns, std::size_t most);

    /// Rows that a block holds.
    std::size_t rows() const { return rows_; }

    /// Binds the buffers of the columns `selection` to the columns of `statement`, in that order. What the others
    /// hold has no meaning from then on.
    void bind(Statement& statement, const std::vector<std::size_t>& selection);

    /// Makes room for every text that did not fit into its buffer; gives whether there was one. The block is lost
    /// then, and must be queried again.
    bool widen(std::size_t fetchedRows);

    /// The value of a column in a row of the block. A NULL is the type's zero, or Null for an optional date.
    Variant value(std::size_t column, std::size_t row) const;

    /// The value of a column in a row of the block, for a statement that goes on from there.
    Parameter parameter(std::size_t column, std::size_t row) const;

    /// What a column gives where there is no record.
    Variant nothing(std::size_t column) const;

  private:
    struct Buffer {
        ColumnType type;
        std::size_t width;
        std::vector<std::byte> values;
        std::vector<SQLLEN> lengths;
    };

    void allocate();
    const std::byte* at(const Buffer& buffer, std::size_t row) const {
        return buffer.values.data() + row * buffer.width;
    }

    std::vector<Buffer> buffers_;
    std::size_t most_;
    std::size_t rows_ = 0;
};

} // namespace kvtdruck
