// The tables that the readers read, each column with its kind and its meaning: the one list that the check of a
// database, the templates of its views, the tables of an embedded one and the documents are made of.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck {

struct SchemaColumn {
    enum class Kind { Number, Text, Date };
    std::string name;
    Kind kind;
    bool isKey;          ///< the keys of a table tell each of its rows from every other and are never empty
    bool isSelected;     ///< readers select by it; so they do by keys
    std::string meaning; ///< German, with its unit
};

struct SchemaTable {
    std::string name;
    std::string meaning;
    std::vector<SchemaColumn> columns; ///< keys first

    /// The key that says the row's year; empty where the table knows none.
    std::string yearColumn() const;
    /// Nothing where there is no such column (letter case does not matter).
    const SchemaColumn* find(std::string_view column) const;
    bool isOfCompany() const { return find("fnr") != nullptr; }
};

/// All tables; one stands behind those that it refers to.
const std::vector<SchemaTable>& schema();

/// Nothing where there is no such table.
const SchemaTable* findTable(std::string_view name);

/// The table whose keys a row of `table` must have a row for; nothing where there is none.
const SchemaTable* parentOf(const SchemaTable& table);

} // namespace kvtdruck
