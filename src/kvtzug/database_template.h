// SQL that makes a foreign database readable, or an embedded one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck {

enum class DatabaseProduct { Sqlite, PostgreSql, MariaDb, SqlServer };

/// The views that a foreign database needs, with comments that say what each column means, to be filled in. As it
/// is it makes views without rows, so that they can be filled in one after the other.
std::string viewTemplate(DatabaseProduct product);

/// The statements that make the tables of an embedded (SQLite) database.
std::vector<std::string> tableStatements();

/// All tables and columns as Markdown.
std::string describeSchema();

} // namespace kvtdruck
