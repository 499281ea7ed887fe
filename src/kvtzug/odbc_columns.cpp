#include "kvtzug/odbc_columns.h"

#include "values/conversion.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace kvtdruck {
namespace {

/// Bytes that all buffers take at most, unless a single row takes more.
constexpr std::size_t kBytes = 1U << 20U;
constexpr std::size_t kMostRows = 1024;

/// UTF-16 units that a text has room for at first, the closing zero included.
constexpr std::size_t kTextUnits = 128;

/// Bytes of the longest text that is read.
constexpr std::size_t kMostText = std::size_t{64} << 20U;

OdbcColumns::Column columnOf(CellType type) {
    switch (type) {
    case CellType::Text:
        return {SQL_C_WCHAR, kTextUnits * sizeof(char16_t), {}, {}};
    case CellType::Date:
        return {SQL_C_TYPE_DATE, sizeof(SQL_DATE_STRUCT), {}, {}};
    case CellType::Number:
        break;
    }
    return {SQL_C_DOUBLE, sizeof(double), {}, {}};
}

template <class T>
std::optional<T> read(const OdbcColumns::Column& column, std::size_t row) {
    if (column.lengths[row] == SQL_NULL_DATA)
        return std::nullopt;
    T value;
    std::memcpy(&value, column.values.data() + row * column.width, sizeof value);
    return value;
}

} // namespace

OdbcColumns::OdbcColumns(const std::vector<CellType>& types) {
    for (const auto type : types)
        columns_.push_back(columnOf(type));
    for (const auto& column : columns_)
        needed_.push_back(column.width);
    allocate();
}

void OdbcColumns::allocate() {
    std::size_t rowBytes = 1;
    for (const auto& column : columns_)
        rowBytes += column.width + sizeof(SQLLEN);
    rows_ = std::clamp<std::size_t>(kBytes / rowBytes, 1, kMostRows);
    for (auto& column : columns_) {
        column.values.assign(column.width * rows_, std::byte());
        column.values.shrink_to_fit();
        column.lengths.assign(rows_, SQL_NULL_DATA);
    }
}

bool OdbcColumns::holds(std::size_t rows) {
    bool fitted = true;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const auto& column = columns_[i];
        if (column.type != SQL_C_WCHAR)
            continue;
        for (std::size_t row = 0; row < rows; ++row) {
            const auto length = column.lengths[row];
            if (length == SQL_NULL_DATA)
                continue;
            const bool open = length == SQL_NO_TOTAL;
            const auto needed = open ? 2 * column.width : std::size_t(length) + sizeof(char16_t);
            if ((length < 0 && !open) || needed > kMostText)
                throw RuntimeError(kDataSourceError,
                                   u"Die Datenbank meldet einen Text von mehr als 64 MB oder ohne Länge; er wird "
                                   u"nicht gelesen.");
            needed_[i] = std::max(needed_[i], needed);
        }
        fitted = fitted && needed_[i] <= column.width;
    }
    return fitted;
}

bool OdbcColumns::widen() {
    bool widened = false;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (needed_[i] <= columns_[i].width)
            continue;
        // MariaDB's driver (3.1.15) takes half as much again for its own copy and reads a text that is longer up to
        // the next zero: the allocator leaves one behind such a power's.
        columns_[i].width = std::bit_ceil(needed_[i]);
        widened = true;
    }
    if (widened)
        allocate();
    return widened;
}

std::optional<double> OdbcColumns::number(std::size_t column, std::size_t row) const {
    return read<double>(columns_[column], row);
}

std::optional<Date> OdbcColumns::date(std::size_t column, std::size_t row) const {
    const auto date = read<SQL_DATE_STRUCT>(columns_[column], row);
    return date ? std::optional(dateOf(date->year, date->month, date->day)) : std::nullopt;
}

std::optional<StringView> OdbcColumns::text(std::size_t column, std::size_t row) const {
    const auto& [type, width, values, lengths] = columns_[column];
    if (lengths[row] == SQL_NULL_DATA)
        return std::nullopt;
    return StringView(reinterpret_cast<const char16_t*>(values.data() + row * width),
                      std::size_t(lengths[row]) / sizeof(char16_t));
}

} // namespace kvtdruck
