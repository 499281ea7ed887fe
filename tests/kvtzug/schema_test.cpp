// The schema is what the readers read, what the sample company has, and what a database is checked for.
#include "kvtzug/schema.h"

#include "kvtzug/database_check.h"
#include "kvtzug/database_template.h"
#include "kvtzug/reader_class.h"
#include "kvtzug/sqlite_database.h"
#include "values/runtime_error.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace kvtdruck {
namespace {

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::set<std::string> wordsOf(const std::string& text) {
    static const std::regex word("[a-z_][a-z0-9_]*");
    return {std::sregex_token_iterator(text.begin(), text.end(), word), {}};
}

/// The tables that a reader's query names.
std::vector<const SchemaTable*> tablesOf(const ReaderClass& reader) {
    auto text = toUtf8(reader.tables);
    for (const auto& operation : reader.operations)
        text += " " + toUtf8(operation.condition);
    std::vector<const SchemaTable*> tables;
    for (const auto& word : wordsOf(text))
        if (const auto* table = findTable(word))
            tables.push_back(table);
    return tables;
}

SchemaColumn::Kind kindOf(ColumnType type) {
    switch (type) {
    case ColumnType::Text:
        return SchemaColumn::Kind::Text;
    case ColumnType::Date:
    case ColumnType::OptionalDate:
        return SchemaColumn::Kind::Date;
    default:
        return SchemaColumn::Kind::Number;
    }
}

TEST(Schema, HasEveryColumnThatAReaderReads) {
    for (const auto& reader : allReaderClasses()) {
        SCOPED_TRACE(toUtf8(reader.name));
        const auto tables = tablesOf(reader);
        ASSERT_FALSE(tables.empty());
        for (const auto& column : reader.columns) {
            const auto name = toUtf8(column.column);
            const auto owner = std::ranges::find_if(tables, [&](const auto* table) { return table->find(name); });
            ASSERT_NE(owner, tables.end()) << name;
            EXPECT_EQ((*owner)->find(name)->kind, kindOf(column.type)) << name;
        }
        for (const auto& operation : reader.operations)
            for (const auto& word : wordsOf(toUtf8(operation.condition)))
                EXPECT_TRUE(findTable(word) ||
                            std::ranges::any_of(tables, [&](const auto* table) { return table->find(word); }))
                    << word;
    }
}

TEST(Schema, HasNoColumnThatNobodyReads) {
    for (const auto& table : schema()) {
        std::set<std::string> read;
        for (const auto& reader : allReaderClasses()) {
            const auto tables = tablesOf(reader);
            if (std::ranges::find(tables, &table) == tables.end())
                continue;
            for (const auto& column : reader.columns)
                read.insert(lowered(toUtf8(column.column)));
            read.merge(wordsOf(toUtf8(reader.tables)));
            for (const auto& operation : reader.operations)
                read.merge(wordsOf(toUtf8(operation.condition)));
        }
        for (const auto& column : table.columns)
            EXPECT_TRUE(read.contains(column.name)) << table.name << "." << column.name;
    }
}

TEST(Schema, IsThatOfTheSampleCompany) {
    const auto sql =
        std::regex_replace(contentOf(std::filesystem::path(KVT_DEMO) / "schema.sql"), std::regex("--[^\n]*"), "");
    for (const auto& table : schema()) {
        const auto begin = sql.find("CREATE TABLE " + table.name + " (");
        ASSERT_NE(begin, std::string::npos) << table.name;
        const auto body = sql.substr(begin, sql.find(";", begin) - begin);
        static const std::regex column("([a-z0-9_]+) (DOUBLE PRECISION|TEXT|VARCHAR|DATE)");
        std::set<std::string> there;
        for (std::sregex_iterator at(body.begin(), body.end(), column), end; at != end; ++at)
            there.insert((*at)[1]);
        std::set<std::string> own;
        for (const auto& known : table.columns)
            own.insert(known.name);
        EXPECT_EQ(there, own) << table.name;
    }
}

TEST(Schema, IsDescribedInTheDocuments) {
    const auto document = contentOf(std::filesystem::path(KVT_DEMO).parent_path() / "docs" / "tabellen.md");
    EXPECT_NE(document.find(describeSchema()), std::string::npos)
        << "docs/tabellen.md is not what „kvtdruck datenbank tabellen“ says";
}

/// A database with all tables that the check asks for, empty and without keys, so that anything can be in them.
class CheckedDatabase : public testing::Test {
  protected:
    void SetUp() override {
        for (const auto& table : schema())
            make(table.name);
    }

    /// Makes a table anew; `types` are those of columns that are declared otherwise than usual.
    void make(const std::string& name, const std::map<std::string, std::string>& types = {}) const {
        std::string columns;
        for (const auto& column : findTable(name)->columns) {
            const auto own = types.find(column.name);
            const auto* usual = column.kind == SchemaColumn::Kind::Number ? "REAL" : "TEXT";
            columns +=
                (columns.empty() ? "" : ", ") + column.name + " " + (own == types.end() ? usual : own->second);
        }
        database_.execute("DROP TABLE IF EXISTS " + name + ";\nCREATE TABLE " + name + " (" + columns + ");\n");
    }

    DatabaseCheck check(Cancellation cancelled = nullptr, const std::string& cancelAt = "") {
        const auto connection = openConnection(database_.connectionString(), cancelled);
        return checkDatabase(
            *connection,
            [&](const std::string& table) {
                if (table == cancelAt)
                    cancelled_ = true;
            },
            cancelled);
    }

    /// Each finding with the table that it is about.
    std::vector<std::string> findings() {
        std::vector<std::string> texts;
        for (const auto& finding : check().findings)
            texts.push_back((finding.error ? "" : "Hinweis ") + finding.table + ": " + finding.text);
        return texts;
    }

    std::string errorOf(const std::string& cancelAt = "") {
        try {
            check(&cancelled_, cancelAt);
        } catch (const RuntimeError& error) {
            return error.what();
        }
        return "no run-time error";
    }

    test::SqliteDatabase database_;
    std::atomic<bool> cancelled_ = false;
};

TEST_F(CheckedDatabase, TablesWithoutRowsAreEmptyAndInOrder) {
    const auto result = check();
    EXPECT_TRUE(result.findings.empty());
    for (const auto& [table, state] : result.tables)
        EXPECT_EQ(state, DatabaseCheck::State::Empty) << table;
}

TEST_F(CheckedDatabase, WithoutTablesEachIsMissing) {
    for (const auto& table : schema())
        database_.execute("DROP TABLE " + table.name + ";\n");
    const auto result = check();
    EXPECT_EQ(result.findings.size(), schema().size());
    for (const auto& [table, state] : result.tables)
        EXPECT_EQ(state, DatabaseCheck::State::Missing) << table;
}

TEST_F(CheckedDatabase, TextsThatAreNoNumbersAreToldOncePerColumnWithTheirCount) {
    make("umsatz", {{"iumsatzdm", "TEXT"}, {"sumsatzdm", "VARCHAR(20)"}, {"iumsatzdm_01", "TEXT"}});
    database_.execute("INSERT INTO firma (fnr) VALUES (1);\n"
                      "INSERT INTO umsatz (fnr, jahr, iumsatzdm, sumsatzdm, iumsatzdm_01) VALUES "
                      "(1, 2021, '12,5', '1', '12.5'), (1, 2022, 'viel', 'x', ' 7 '), (1, 2023, '7 EUR', '2', ''), "
                      "(1, 2024, NULL, '-1e3', NULL);\n");
    EXPECT_THAT(findings(), testing::UnorderedElementsAre(
                                "umsatz: Die Spalte iumsatzdm enthält „12,5“; das ist keine Zahl (3 Zeilen).",
                                "umsatz: Die Spalte sumsatzdm enthält „x“; das ist keine Zahl (1 Zeile)."));
}

TEST_F(CheckedDatabase, WhatIsWrongInOneColumnHidesNothingInAnother) {
    make("umsatz", {{"iumsatzdm", "TEXT"}});
    database_.execute("INSERT INTO firma (fnr) VALUES (1);\n"
                      "INSERT INTO umsatz (fnr, jahr, iumsatzdm, sumsatzdm) VALUES (1, 2024, 'viel', 'x');\n");
    EXPECT_THAT(findings(), testing::UnorderedElementsAre(
                                "umsatz: Die Tabelle „umsatz“ kann nicht gelesen werden. Die Spalte „sumsatzdm“ "
                                "enthält „x“; das ist keine Zahl.",
                                "umsatz: Die Spalte iumsatzdm enthält „viel“; das ist keine Zahl (1 Zeile)."));
}

TEST_F(CheckedDatabase, ColumnsOfAnotherKindAreTold) {
    make("feiertage", {{"jahr", "DATE"}, {"fdatum", "INTEGER"}, {"feiertag", "INTEGER"}});
    database_.execute("ALTER TABLE kosten DROP COLUMN priv;\n");
    EXPECT_THAT(findings(), testing::UnorderedElementsAre(
                                "feiertage: Die Spalte jahr ist ein Datum; gebraucht wird eine Zahl.",
                                "feiertage: Die Spalte fdatum ist eine Zahl; gebraucht wird ein Datum.",
                                "kosten: Es fehlt die Spalte priv."));
}

TEST_F(CheckedDatabase, KeysThatAreEmptyOrNotAloneAreTold) {
    database_.execute("INSERT INTO kosten (fnr, jahr) VALUES (1, 2024), (1, 2024), (1, NULL), (NULL, 2024);\n");
    EXPECT_THAT(findings(),
                testing::UnorderedElementsAre("kosten: 2 Zeilen haben einen leeren Schlüssel (fnr, jahr).",
                                              "kosten: 1 Schlüssel (fnr, jahr) kommt mehrmals vor."));
}

TEST_F(CheckedDatabase, AKeyThatIsAnEmptyTextIsEmpty) {
    make("kosten", {{"fnr", "TEXT"}, {"jahr", "TEXT"}});
    make("feiertage", {{"jahr", "TEXT"}});
    database_.execute("INSERT INTO kosten (fnr, jahr) VALUES ('', '2024'), ('1', ' '), ('01', '2024');\n"
                      "INSERT INTO firma (fnr) VALUES (1);\n"
                      "INSERT INTO feiertage (bundesland, jahr, fdatum) VALUES ('', '2024', '2024-05-01');\n");
    EXPECT_THAT(findings(), testing::UnorderedElementsAre(
                                "kosten: 2 Zeilen haben einen leeren Schlüssel (fnr, jahr).",
                                "feiertage: 1 Zeile hat einen leeren Schlüssel (bundesland, jahr, fdatum)."));
}

TEST_F(CheckedDatabase, OfManyGapsTwentyAreNamedAndTheRestCounted) {
    database_.execute("INSERT INTO firma (fnr) VALUES (1), (2), (3), (4);\n"
                      "INSERT INTO umsatz (fnr, jahr) SELECT fnr, 2024 FROM firma;\n");
    const auto told = findings(); // six other tables have years, for each of four companies
    ASSERT_EQ(told.size(), 21U);
    EXPECT_EQ(std::ranges::count_if(
                  told, [](const std::string& text) { return text.ends_with(" hat keine Daten für 2024."); }),
              20);
    EXPECT_EQ(told.back(), "Hinweis firma: … und 4 weitere Lücken dieser Art.");
}

TEST_F(CheckedDatabase, EndsWhenTheUserAsks) {
    std::string columns;
    for (const auto& column : findTable("firma")->columns)
        columns += (columns.empty()                           ? "i AS "
                    : column.kind == SchemaColumn::Kind::Text ? ", '' AS "
                                                              : ", i AS ") +
                   column.name;
    database_.execute("DROP TABLE firma;\nCREATE VIEW firma AS WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL "
                      "SELECT i + 1 FROM n) SELECT " +
                      columns + " FROM n;\n");
    EXPECT_THAT(errorOf("firma"), testing::HasSubstr("Der Vorgang wurde abgebrochen.")) << "while it reads";
    database_.execute("DROP VIEW firma;\n");
    EXPECT_THAT(errorOf(), testing::HasSubstr("Der Vorgang wurde abgebrochen.")) << "where it finds no table";
}

TEST(ViewTemplate, SpeaksTheLanguageOfItsProduct) {
    const auto ends = [](DatabaseProduct product) {
        const auto text = viewTemplate(product);
        const auto begin = text.find("-- feiertage:");
        return text.substr(begin, text.find("-- mitarbeiter:") - begin);
    };
    EXPECT_THAT(ends(DatabaseProduct::Sqlite), testing::HasSubstr("CAST(NULL AS TEXT) AS fdatum,"));
    EXPECT_THAT(ends(DatabaseProduct::PostgreSql), testing::HasSubstr("CAST(NULL AS DOUBLE PRECISION) AS jahr,"));
    EXPECT_THAT(ends(DatabaseProduct::MariaDb), testing::HasSubstr("FROM DUAL WHERE 1 = 0;\n"));
    EXPECT_THAT(ends(DatabaseProduct::SqlServer), testing::HasSubstr("CREATE VIEW feiertage AS\nSELECT\n"));
    EXPECT_THAT(ends(DatabaseProduct::SqlServer), testing::HasSubstr("WHERE 1 = 0;\nGO\n"));
}

} // namespace
} // namespace kvtdruck
