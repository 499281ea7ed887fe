// The reader classes of the reference data access, each told as a query and a table of its columns.
#pragma once

#include "values/text.h"
#include "values/variant.h"

#include <cstddef>
#include <vector>

namespace kvtdruck {

/// What a column's value becomes. An optional date is Null where there is none; a date is then the zero date.
enum class ColumnType { Text, Single, Double, Date, OptionalDate };

/// One getter: its name, the column of the query that feeds it, and the value's type.
struct Column {
    String getter;
    String column;
    ColumnType type;
};

/// In the place of an argument's index: the product mode that the reader was connected with.
inline constexpr std::size_t kProductMode = 99;
/// And in its place: the first and the last year that the connection shows.
inline constexpr std::size_t kFirstYear = 98;
inline constexpr std::size_t kLastYear = 97;

/// One read operation: the condition on the query's rows, and the index of the argument behind each "?" of it.
struct ReadOperation {
    StringView name;
    StringView condition;
    std::vector<ValueType> arguments;
    std::vector<std::size_t> parameters;
};

struct ReaderClass {
    StringView name;
    StringView tables;
    std::vector<Column> columns;
    std::vector<ReadOperation> operations;
    /// The getters whose columns order the rows; together they tell every row of a selection from every other.
    std::vector<StringView> key;
    /// Rows that are the same come once.
    bool distinct = false;
    /// How many rows are queried at once at most. Where the key is a single column and repeats itself in many rows,
    /// one at a time gives each of its values once, and a database finds each by its index.
    std::size_t atOnce = 1024;
    /// A single record, without a cursor: the read operation gives whether there is one.
    bool single = false;
};

const std::vector<ReaderClass>& allReaderClasses();

/// The class of that name, or nullptr.
const ReaderClass* findReaderClass(StringView name);

} // namespace kvtdruck
