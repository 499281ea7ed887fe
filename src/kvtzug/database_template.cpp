#include "kvtzug/database_template.h"

#include "kvtzug/schema.h"

#include <algorithm>

namespace kvtdruck {
namespace {

using Kind = SchemaColumn::Kind;

/// What differs in a product's SQL.
struct Wording {
    const char* name;
    const char* number;
    const char* text;
    const char* date;
    const char* nowhere;   ///< what a SELECT without a table has behind its columns
    const char* separator; ///< behind each statement
};

const Wording& wordingOf(DatabaseProduct product) {
    static constexpr Wording kSqlite{"SQLite", "REAL", "TEXT", "TEXT", "", ";\n"};
    static constexpr Wording kPostgreSql{"PostgreSQL", "DOUBLE PRECISION", "TEXT", "DATE", "", ";\n"};
    static constexpr Wording kMariaDb{"MariaDB und MySQL", "DOUBLE", "CHAR(255)", "DATE", "FROM DUAL ", ";\n"};
    static constexpr Wording kSqlServer{"Microsoft SQL Server", "FLOAT", "NVARCHAR(255)", "DATE", "", ";\nGO\n"};
    switch (product) {
    case DatabaseProduct::Sqlite:
        return kSqlite;
    case DatabaseProduct::PostgreSql:
        return kPostgreSql;
    case DatabaseProduct::MariaDb:
        return kMariaDb;
    case DatabaseProduct::SqlServer:
        break;
    }
    return kSqlServer;
}

const char* typeOf(const Wording& wording, Kind kind) {
    return kind == Kind::Text ? wording.text : kind == Kind::Date ? wording.date : wording.number;
}

const char* wordFor(Kind kind) {
    return kind == Kind::Text ? "Text" : kind == Kind::Date ? "Datum" : "Zahl";
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string viewOf(const SchemaTable& table, const Wording& wording) {
    std::string text = "-- " + table.name + ": " + table.meaning + "\nDROP VIEW IF EXISTS " + table.name +
                       wording.separator + "CREATE VIEW " + table.name + " AS\nSELECT\n";
    for (const auto& column : table.columns) {
        const bool last = &column == &table.columns.back();
        const auto value = "    CAST(NULL AS " + std::string(typeOf(wording, column.kind)) + ") AS " + column.name +
                           (last ? "" : ",");
        text += padded(value, 60) + " -- " + (column.isKey ? "Schlüssel, " : "") + wordFor(column.kind) + ": " +
                column.meaning + "\n";
    }
    return text + wording.nowhere + "WHERE 1 = 0" + wording.separator + "\n";
}

} // namespace

std::string viewTemplate(DatabaseProduct product) {
    const auto& wording = wordingOf(product);
    std::string text = "-- Sichten, mit denen KVTDruck eine eigene Datenbank liest: Vorlage für " +
                       std::string(wording.name) +
                       ".\n"
                       "--\n"
                       "-- Jede Sicht gibt eine Tabelle wieder, jede Zeile eine ihrer Spalten. Ersetzen Sie "
                       "CAST(NULL AS …) durch Ihre\n"
                       "-- Spalte oder eine Rechnung und die letzte Zeile der Sicht („WHERE 1 = 0“) durch FROM mit "
                       "Ihrer Tabelle. Was Sie\n"
                       "-- nicht haben, bleibt, wie es ist: Die Spalte ist dann leer und wird als 0 oder als "
                       "leerer Text gedruckt.\n"
                       "-- Nur Schlüssel dürfen nicht leer sein; zusammen kommen sie nicht zweimal vor. Schlüssel "
                       "und Postleitzahlen\n"
                       "-- dürfen Zahlen sein oder Texte, die Zahlen sind.\n"
                       "--\n"
                       "-- So, wie sie ist, macht die Vorlage Sichten ohne Zeilen. Was noch fehlt, sagt „kvtdruck "
                       "datenbank pruefen“.\n\n";
    for (const auto& table : schema())
        text += viewOf(table, wording);
    return text;
}

std::vector<std::string> tableStatements() {
    const auto& wording = wordingOf(DatabaseProduct::Sqlite);
    std::vector<std::string> statements;
    for (const auto& table : schema()) {
        std::string columns;
        std::string keys;
        for (const auto& column : table.columns) {
            columns += column.name + " " + typeOf(wording, column.kind) + (column.isKey ? " NOT NULL, " : ", ");
            if (column.isKey)
                keys += (keys.empty() ? "" : ", ") + column.name;
        }
        std::string references;
        if (const auto* parent = parentOf(table)) {
            std::string shared;
            for (const auto& column : parent->columns)
                if (column.isKey)
                    shared += (shared.empty() ? "" : ", ") + column.name;
            references = ", FOREIGN KEY (";
            references.append(shared).append(") REFERENCES ").append(parent->name).append(" (").append(shared) +=
                ")";
        }
        auto& statement = statements.emplace_back("CREATE TABLE ");
        statement.append(table.name).append(" (").append(columns).append("PRIMARY KEY (").append(keys).append(")");
        statement.append(references).append(")");
    }
    return statements;
}

std::string describeSchema() {
    std::string text;
    for (const auto& table : schema()) {
        text += "## " + table.name + "\n\n" + table.meaning + "\n\n| Spalte | Art | Bedeutung |\n|---|---|---|\n";
        for (const auto& column : table.columns)
            text += "| `" + column.name + "` | " + (column.isKey ? "Schlüssel, " : "") + wordFor(column.kind) +
                    " | " + column.meaning + " |\n";
        text += "\n";
    }
    text.pop_back();
    return text;
}

} // namespace kvtdruck
