// What a band is made of that is no row of a table itself: headings, paragraphs, tables, charts, in the order in
// which one reads them.
#pragma once

#include "druckwerk/structure/table_grid.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kvtdruck::druckwerk {

/// A cell of a row.
struct TableCell {
    Columns columns;
    std::vector<std::size_t> items;
};
using TableRow = std::vector<TableCell>;

struct Block {
    enum class Kind : std::uint8_t { Title, Heading, Paragraph, Table, Figure };
    Kind kind = Kind::Paragraph;
    Box box;
    std::vector<std::size_t> items; ///< of a table all, otherwise in their order
    // of a table:
    std::vector<HeadCell> head;
    std::vector<TableRow> rows;
    std::size_t rowHead = 0; ///< the column that names the rows
};

/// The sizes that headings are known by.
struct TextSizes {
    double usual = 0;
    double largest = 0;
};

/// A row of a table is no taller, in points: 16 mm.
inline constexpr double kTallestRow = 16 * 72 / 25.4;

/// The blocks of a band's `pieces`:
/// - The largest text is the title, where it is a third larger than the usual one.
/// - A bold text that is larger than the usual one is a heading where a line begins beneath it at its left edge.
/// - What stands between two level edges of one width, a row apart or less, is a row. Rows that follow each other
///   are a table where they have two columns or more, otherwise paragraphs. Its head are the texts of the first
///   row, or those right above it, where they are the same in every document.
/// - All else is a paragraph for each text.
std::vector<Block> blocksOf(std::vector<Piece> pieces, std::vector<Edge> edges, const TextSizes& sizes);

/// The column of `pieces` that names the others: the first one that is no number.
std::size_t rowHeadOf(const TableGrid& grid, std::span<const Piece> pieces);

/// Lets each cell reach to the next one, so that the row has all columns.
void spread(TableRow& row, std::size_t columns);

} // namespace kvtdruck::druckwerk
