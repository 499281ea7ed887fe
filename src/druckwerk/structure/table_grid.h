// The columns of a table and the cells of its head, by the places of what stands in them.
#pragma once

#include "druckwerk/structure/pieces.h"

#include <cstddef>
#include <span>
#include <vector>

namespace kvtdruck::druckwerk {

/// Columns from one to another.
struct Columns {
    std::size_t first = 0;
    std::size_t last = 0;
    std::size_t count() const { return last - first + 1; }
    bool holds(const Columns& other) const { return first <= other.first && other.last <= last; }
    bool operator==(const Columns&) const = default;
};

/// Columns are where the cells of rows stand above each other.
class TableGrid {
  public:
    TableGrid() = default;
    explicit TableGrid(std::vector<Span> cells);

    std::size_t size() const { return columns_.size(); }
    bool empty() const { return columns_.empty(); }
    /// Makes a column of what stands beside all others.
    void addBeside(const Span& cell);
    /// The columns that `cell` stands in; the nearest one where it stands in none. There has to be one.
    Columns of(const Span& cell) const;

  private:
    std::vector<Span> columns_;
};

/// The baselines of the lines that a row is divided into: where words, the same in every document, stand above each
/// other in one column, they name them. Otherwise one line.
std::vector<double> linesOf(const TableGrid& grid, std::span<const Piece> row);
/// The line of `piece` among them.
std::size_t lineOf(const Piece& piece, const std::vector<double>& lines);

/// A cell of a table's head.
struct HeadCell {
    Columns columns;
    std::size_t level = 0;          ///< the row of the head that it begins in
    std::size_t rows = 1;           ///< that it reaches over
    std::vector<std::size_t> items; ///< none where it only fills a gap
};

/// The head over the columns of `grid`: which text heads which columns, row by row, so that each row has all
/// columns. A text that a line stands beneath, with other texts below that, heads what the line reaches over.
std::vector<HeadCell> headOver(const TableGrid& grid, std::span<const Piece> texts, std::span<const Edge> edges);

/// The cell that is nearest to the column; nullptr where the head says nothing of it.
const HeadCell* headOf(const std::vector<HeadCell>& head, std::size_t column);
/// The cell above another one; nullptr where it is the uppermost.
const HeadCell* headAbove(const std::vector<HeadCell>& head, const HeadCell& cell);

} // namespace kvtdruck::druckwerk
