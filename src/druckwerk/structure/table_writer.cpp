#include "druckwerk/structure/table_writer.h"

#include <array>

namespace kvtdruck::druckwerk {

namespace {

std::string spanEntry(const char* name, std::size_t count) {
    return count > 1 ? name + std::to_string(count) : "";
}

std::string headersEntry(const std::string& names) {
    return names.empty() ? "" : "/Headers[" + names + "]";
}

std::string tableAttributes(const std::string& entries) {
    return entries.empty() ? "" : "/A<</O/Table" + entries + ">>";
}

} // namespace

std::string shownBy(const PdfDocument& document, const TaggedContent& content) {
    return content.kids.empty() ? "" : "/Pg " + reference(document.page()) + "/K[" + content.kids + "]";
}

TableWriter::TableWriter(PdfDocument& document, int parent)
    : document_(document), structure_(*document.structure()), parent_(parent), element_(structure_.allocate()) {}

void TableWriter::writeHead(const std::vector<HeadCell>& head, std::span<TaggedContent> contents,
                            std::size_t columns) {
    const int thead = structure_.allocate();
    std::vector<std::string> names(head.size());
    std::string rows;
    for (std::size_t i = 0; i < head.size();) {
        const int row = structure_.allocate();
        std::string cells;
        for (const std::size_t level = head[i].level; i < head.size() && head[i].level == level; ++i) {
            TaggedContent& content = contents[i];
            if (content.element == 0)
                content.element = structure_.allocate();
            const bool empty = content.kids.empty();
            const HeadCell* above = headAbove(head, head[i]);
            names[i] = empty ? "" : structure_.name(content.element);
            const std::string attributes =
                (empty ? "" : "/Scope/Column") + spanEntry("/ColSpan ", head[i].columns.count()) +
                spanEntry("/RowSpan ", head[i].rows) +
                headersEntry(above == nullptr ? "" : names[static_cast<std::size_t>(above - head.data())]);
            structure_.write(content.element, empty ? "TD" : "TH", row,
                             (empty ? "" : "/ID" + names[i]) + shownBy(document_, content) +
                                 tableAttributes(attributes));
            cells += reference(content.element) + " ";
        }
        structure_.write(row, "TR", thead, "/K[" + cells + "]");
        rows += reference(row) + " ";
    }
    structure_.write(thead, "THead", element_, "/K[" + rows + "]");
    kids_ += reference(thead) + " ";
    headNames_.clear();
    for (std::size_t column = 0; column < columns; ++column) {
        const HeadCell* cell = headOf(head, column);
        headNames_.push_back(cell == nullptr ? "" : names[static_cast<std::size_t>(cell - head.data())]);
    }
}

std::string TableWriter::headsOf(const Columns& columns) const {
    std::string names;
    for (std::size_t i = columns.first; i <= columns.last && i < headNames_.size(); ++i)
        if (names.find(headNames_[i]) == std::string::npos)
            names += headNames_[i];
    return names;
}

void TableWriter::writeCell(const TaggedCell& cell, int row, const std::string& name, const std::string& heads) {
    static constexpr std::array kScopes = {"", "/Scope/Row", "/Scope/Column"};
    entries_.clear();
    if (!name.empty())
        entries_.append("/ID").append(name);
    if (!cell.content.kids.empty())
        entries_.append(page_).append("/K[").append(cell.content.kids).append("]");
    const bool isPlain = name.empty() && cell.span == 1 && cell.rows == 1;
    if (!isPlain || !heads.empty()) {
        entries_.append("/A<</O/Table").append(kScopes[static_cast<std::size_t>(cell.kind)]);
        if (!isPlain)
            entries_.append(spanEntry("/ColSpan ", cell.span)).append(spanEntry("/RowSpan ", cell.rows));
        if (!heads.empty())
            entries_.append("/Headers[").append(heads).append("]");
        entries_.append(">>");
    }
    structure_.write(cell.content.element, name.empty() ? "TD" : "TH", row, entries_);
}

std::string TableWriter::writeRow(std::span<TaggedCell> cells, const std::string& outer) {
    hasRows_ = true;
    if (body_ == 0)
        body_ = structure_.allocate();
    const int row = structure_.allocate();
    page_ = "/Pg " + reference(document_.page());
    std::string first;
    std::string last = outer;
    std::string kids;
    const auto isHead = [](const TaggedCell& cell) { return cell.kind != TaggedCell::Kind::Data; };
    for (TaggedCell& cell : cells) {
        if (cell.content.element == 0)
            cell.content.element = structure_.allocate();
        kids += reference(cell.content.element) + " ";
        if (!isHead(cell))
            continue;
        const std::string name = structure_.name(cell.content.element);
        writeCell(cell, row, name, last);
        last = name;
        first = first.empty() ? name : first;
    }
    for (const TaggedCell& cell : cells)
        if (!isHead(cell))
            writeCell(cell, row, "", cell.content.kids.empty() ? "" : headsOf(cell.columns) + last);
    structure_.write(row, "TR", body_, "/K[" + kids + "]");
    rows_ += reference(row) + " ";
    return first;
}

void TableWriter::endPage() {
    if (body_ == 0)
        return;
    structure_.write(body_, "TBody", element_, "/K[" + rows_ + "]");
    kids_ += reference(body_) + " ";
    body_ = 0;
    rows_.clear();
}

std::string TableWriter::finish() {
    endPage();
    if (kids_.empty())
        return {};
    structure_.write(element_, "Table", parent_, "/K[" + kids_ + "]");
    return reference(element_) + " ";
}

} // namespace kvtdruck::druckwerk
