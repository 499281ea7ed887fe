#include "kvtzug/rowset.h"

#include "values/conversion.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace kvtdruck {
namespace {

/// Bytes that a block takes at most, unless a single row takes more.
constexpr std::size_t kBlockBytes = 1U << 20U;

/// UTF-16 units that a text has room for at first, the closing zero included.
constexpr std::size_t kTextUnits = 128;

SQLSMALLINT cType(ColumnType type) {
    switch (type) {
    case ColumnType::Text:
        return SQL_C_WCHAR;
    case ColumnType::Date:
    case ColumnType::OptionalDate:
        return SQL_C_TYPE_DATE;
    case ColumnType::Single:
    case ColumnType::Double:
        break;
    }
    return SQL_C_DOUBLE;
}

std::size_t initialWidth(ColumnType type) {
    switch (cType(type)) {
    case SQL_C_WCHAR:
        return kTextUnits * sizeof(char16_t);
    case SQL_C_TYPE_DATE:
        return sizeof(SQL_DATE_STRUCT);
    default:
        return sizeof(double);
    }
}

template <class T>
T read(const std::byte* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

} // namespace

Rowset::Rowset(const std::vector<Column>& columns, std::size_t most) : most_(most) {
    buffers_.reserve(columns.size());
    for (const auto& column : columns)
        buffers_.push_back({column.type, initialWidth(column.type), {}, {}});
    allocate();
}

void Rowset::allocate() {
    std::size_t rowBytes = 1;
    for (const auto& buffer : buffers_)
        rowBytes += buffer.width + sizeof(SQLLEN);
    rows_ = std::clamp<std::size_t>(kBlockBytes / rowBytes, 1, most_);
    for (auto& buffer : buffers_) {
        buffer.values.assign(buffer.width * rows_, std::byte());
        buffer.values.shrink_to_fit();
        buffer.lengths.assign(rows_, SQL_NULL_DATA);
    }
}

void Rowset::bind(Statement& statement, const std::vector<std::size_t>& selection) {
    for (std::size_t i = 0; i < selection.size(); ++i) {
        auto& buffer = buffers_[selection[i]];
        statement.bindColumn(SQLUSMALLINT(i + 1), cType(buffer.type), buffer.values.data(), buffer.width,
                             buffer.lengths.data());
    }
}

bool Rowset::widen(std::size_t fetchedRows) {
    bool widened = false;
    for (auto& buffer : buffers_) {
        if (buffer.type != ColumnType::Text)
            continue;
        std::size_t needed = buffer.width;
        for (std::size_t row = 0; row < fetchedRows; ++row) {
            const auto length = buffer.lengths[row];
            if (length == SQL_NO_TOTAL)
                needed = std::max(needed, 2 * buffer.width);
            else if (length != SQL_NULL_DATA)
                needed = std::max(needed, std::size_t(length) + sizeof(char16_t));
        }
        widened = widened || needed > buffer.width;
        if (needed > buffer.width)
            buffer.width = std::bit_ceil(needed);
    }
    if (widened)
        allocate();
    return widened;
}

Variant Rowset::value(std::size_t column, std::size_t row) const {
    const auto& buffer = buffers_[column];
    const auto length = buffer.lengths[row];
    if (length == SQL_NULL_DATA)
        return nothing(column);
    const auto* bytes = at(buffer, row);
    switch (buffer.type) {
    case ColumnType::Text: {
        String text(std::size_t(length) / sizeof(char16_t), u'\0');
        std::memcpy(text.data(), bytes, text.size() * sizeof(char16_t));
        return text;
    }
    case ColumnType::Single:
        return float(read<double>(bytes));
    case ColumnType::Double:
        return read<double>(bytes);
    case ColumnType::Date:
    case ColumnType::OptionalDate:
        break;
    }
    const auto date = read<SQL_DATE_STRUCT>(bytes);
    return dateOf(date.year, date.month, date.day);
}

Parameter Rowset::parameter(std::size_t column, std::size_t row) const {
    const auto& buffer = buffers_[column];
    const auto size = buffer.type == ColumnType::Text ? std::size_t(buffer.lengths[row]) : buffer.width;
    return {cType(buffer.type), {at(buffer, row), size}};
}

Variant Rowset::nothing(std::size_t column) const {
    switch (buffers_[column].type) {
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
