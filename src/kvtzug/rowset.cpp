#include "kvtzug/rowset.h"

#include <algorithm>

namespace kvtdruck {
namespace {

/// Bytes that cells take at most, and bytes of texts that end a block.
constexpr std::size_t kBlockBytes = 1U << 20U;

} // namespace

CellType cellTypeOf(ColumnType type) {
    switch (type) {
    case ColumnType::Text:
        return CellType::Text;
    case ColumnType::Date:
    case ColumnType::OptionalDate:
        return CellType::Date;
    case ColumnType::Single:
    case ColumnType::Double:
        break;
    }
    return CellType::Number;
}

Rowset::Rowset(const std::vector<Column>& columns, std::size_t atOnce)
    : most_(std::min(atOnce, kBlockBytes / (columns.size() * sizeof(Cell)))) {
    for (const auto& column : columns)
        types_.push_back(column.type);
}

void Rowset::clear() {
    texts_.clear();
    rows_ = 0;
    last_ = true;
}

void Rowset::fill(Query& query, const std::vector<std::size_t>& selection) {
    clear();
    while (rows_ < most_ && texts_.size() * sizeof(char16_t) < kBlockBytes && (last_ = !query.step(), !last_)) {
        if (cells_.size() < (rows_ + 1) * types_.size())
            cells_.resize((rows_ + 1) * types_.size());
        auto* row = &cells_[rows_ * types_.size()];
        for (std::size_t i = 0; i < selection.size(); ++i)
            row[selection[i]] = cellOf(query, i, types_[selection[i]]);
        ++rows_;
    }
}

Rowset::Cell Rowset::cellOf(Query& query, std::size_t index, ColumnType type) {
    using enum Cell::Content;
    Cell cell{Nothing, 0, {0}};
    switch (cellTypeOf(type)) {
    case CellType::Number:
        if (const auto number = query.number(index))
            cell = {Number, 0, {*number}};
        break;
    case CellType::Date:
        if (const auto date = query.date(index))
            cell = {Number, 0, {date->days}};
        break;
    case CellType::Text:
        if (const auto text = query.text(index)) {
            cell = {Text, static_cast<std::uint32_t>(text->size()), {.begin = texts_.size()}};
            texts_ += *text;
        }
    }
    return cell;
}

void Rowset::read(std::size_t column, std::size_t row, Variant& value) const {
    const auto& found = cell(column, row);
    const auto type = types_[column];
    if (found.content == Cell::Content::Nothing) {
        value = nothing(type);
        return;
    }
    switch (type) {
    case ColumnType::Text:
        value.emptyText() = textOf(found);
        break;
    case ColumnType::Single:
        value = float(found.number);
        break;
    case ColumnType::Double:
        value = found.number;
        break;
    case ColumnType::Date:
    case ColumnType::OptionalDate:
        value = Date{found.number};
    }
}

Parameter Rowset::parameter(std::size_t column, std::size_t row) const {
    const auto& found = cell(column, row);
    switch (cellTypeOf(types_[column])) {
    case CellType::Text:
        return String(textOf(found));
    case CellType::Date:
        return Date{found.number};
    case CellType::Number:
        break;
    }
    return found.number;
}

Variant Rowset::nothing(ColumnType type) {
    switch (type) {
    case ColumnType::Text:
        return String();
    case ColumnType::Single:
        return 0.0F;
    case ColumnType::Double:
        return 0.0;
    case ColumnType::Date:
        return Date();
    case ColumnType::OptionalDate:
        break;
    }
    return Null();
}

} // namespace kvtdruck
