// The schema is what the readers read, and what the sample company has.
#include "kvtzug/schema.h"

#include "kvtzug/database_template.h"
#include "kvtzug/reader_class.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
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

} // namespace
} // namespace kvtdruck
