// One table of the document's structure: its head, its rows, and which cell heads which.
#pragma once

#include "druckwerk/page/document.h"
#include "druckwerk/structure/table_grid.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::druckwerk {

/// A cell of a row, with what shows it.
struct TaggedCell {
    enum class Kind : std::uint8_t {
        Data,
        RowHead,  ///< heads the row
        GroupHead ///< heads the rows that follow
    };
    Columns columns;      ///< that it stands in
    std::size_t span = 1; ///< columns that it reaches over
    std::size_t rows = 1; ///< that it reaches over
    std::size_t line = 0; ///< of those that a row is divided into
    Kind kind = Kind::Data;
    TaggedContent content = {};
};

/// What shows an element of the page in hand, as entries of its dictionary.
std::string shownBy(const PdfDocument& document, const TaggedContent& content);

/// Writes a table (ISO 32000-1, 14.8.4.3.4 and 14.8.5.7) as it comes: a body for each page. Each data cell names
/// the cells that head it, which have a scope as well; a head names those above it.
class TableWriter {
  public:
    /// `parent` is the element that the table is in.
    TableWriter(PdfDocument& document, int parent);

    bool hasRows() const { return hasRows_; }

    /// The head's cells in their order, each with what shows it.
    void writeHead(const std::vector<HeadCell>& head, std::span<TaggedContent> contents, std::size_t columns);
    /// Cells in their order. Heads in a row head each other, the last one its data; `outer` names what heads the
    /// first one; empty: nothing does. Gives the first one's name.
    std::string writeRow(std::span<TaggedCell> cells, const std::string& outer);
    void endPage();
    /// Gives a reference to the table, with a blank behind it; nothing where it has no rows: then it is no table.
    std::string finish();

  private:
    void writeCell(const TaggedCell& cell, int row, const std::string& name, const std::string& heads);
    std::string headsOf(const Columns& columns) const;

    PdfDocument& document_;
    StructureTree& structure_;
    int parent_;
    int element_;
    std::string kids_;
    int body_ = 0;
    bool hasRows_ = false; ///< besides those of its head
    std::string rows_;
    std::string page_;                   ///< the page in hand, as an entry
    std::string entries_;                ///< of the cell in hand
    std::vector<std::string> headNames_; ///< of the nearest head of each column
};

} // namespace kvtdruck::druckwerk
