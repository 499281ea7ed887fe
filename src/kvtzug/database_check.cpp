#include "kvtzug/database_check.h"

#include "kvtzug/schema.h"
#include "values/letters.h"
#include "values/runtime_error.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <set>
#include <utility>

namespace kvtdruck {
namespace {

using Kind = SchemaColumn::Kind;
using State = DatabaseCheck::State;

/// Companies that are named one by one.
constexpr std::size_t kMostNamed = 20;

std::string joined(const std::vector<std::string>& words, const char* between = ", ") {
    std::string text;
    for (const auto& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::string numberText(double number) {
    return toUtf8(decimal(std::llround(number)));
}

std::string rowsHave(double count) {
    return count == 1 ? "1 Zeile hat" : numberText(count) + " Zeilen haben";
}

CellType cellTypeOf(Kind kind) {
    return kind == Kind::Text ? CellType::Text : kind == Kind::Date ? CellType::Date : CellType::Number;
}

bool isNumber(StringView text) {
    const auto utf8 = toUtf8(trimmed(text));
    double number = 0;
    const auto [end, error] = std::from_chars(utf8.data(), utf8.data() + utf8.size(), number);
    return utf8.empty() || (error == std::errc() && end == utf8.data() + utf8.size());
}

class Check {
  public:
    Check(Connection& connection, Cancellation cancelled) : connection_(connection), cancelled_(cancelled) {}

    /// A table by itself.
    void table(const SchemaTable& table) {
        auto& state = result_.tables[table.name] = State::Missing;
        std::vector<SourceColumn> there;
        if (!attempt(table, [&] { there = connection_.columnsOf(fromUtf8(table.name)); }))
            return;
        const auto findings = result_.findings.size();
        columns(table, there);
        if (result_.findings.size() == findings) {
            contents(table, there);
            keys(table, there);
        }
        state = result_.findings.size() > findings ? State::Faulty : State::Usable;
        if (state == State::Usable && count(table, "SELECT COUNT(*) FROM " + table.name) == 0)
            state = State::Empty;
    }

    /// What lies between tables.
    void relations() {
        for (const auto& table : schema())
            if (const auto* parent = parentOf(table); parent && isReadable(table) && isReadable(*parent))
                orphans(table, *parent);
        if (const auto* accounts = findTable("konten"); isReadable(*accounts))
            if (const double wrong =
                    count(*accounts, "SELECT COUNT(*) FROM konten WHERE kontenart NOT IN (1, 2) OR "
                                     "kontenart IS NULL");
                wrong > 0)
                find(true, *accounts,
                     rowsHave(wrong) + " eine andere kontenart als 1 (Gemeinkosten) und 2 (neutral); "
                                       "keine Liste druckt sie.");
        years();
    }

    DatabaseCheck take() { return std::move(result_); }

  private:
    bool isReadable(const SchemaTable& table) const {
        const auto state = result_.tables.at(table.name);
        return state == State::Usable || state == State::Empty;
    }

    void find(bool error, const SchemaTable& table, std::string text) {
        result_.findings.push_back({error, table.name, std::move(text)});
    }

    /// Does a step; what the source refuses becomes a finding.
    template <class Step>
    bool attempt(const SchemaTable& table, Step&& step) {
        try {
            step();
            return true;
        } catch (const RuntimeError& error) {
            if (cancelled_ != nullptr && *cancelled_)
                throw;
            find(true, table, toUtf8(error.description()));
            return false;
        }
    }

    void columns(const SchemaTable& table, const std::vector<SourceColumn>& there) {
        std::vector<std::string> missing;
        for (const auto& column : table.columns) {
            const auto* found = findIn(there, column);
            if (!found)
                missing.push_back(column.name);
            else if (found->type && isWrong(*found->type, column.kind))
                find(true, table,
                     "Die Spalte " + column.name + " ist " +
                         (found->type == CellType::Date ? "ein Datum" : "eine Zahl") + "; gebraucht wird " +
                         (column.kind == Kind::Date ? "ein Datum." : "eine Zahl."));
        }
        if (!missing.empty())
            find(true, table,
                 (missing.size() == 1 ? "Es fehlt die Spalte " : "Es fehlen die Spalten ") + joined(missing) + ".");
    }

    static const SourceColumn* findIn(const std::vector<SourceColumn>& there, const SchemaColumn& column) {
        const auto found = std::ranges::find_if(there, [&](const SourceColumn& own) {
            return asciiLower(toUtf8(own.name)) == asciiLower(column.name);
        });
        return found == there.end() ? nullptr : &*found;
    }

    /// Texts may hold what is needed, and anything can be a text.
    static bool isWrong(CellType found, Kind needed) {
        return found != CellType::Text && needed != Kind::Text && found != cellTypeOf(needed);
    }

    /// Reads everything, and where that fails column by column, so that all that is wrong is told.
    void contents(const SchemaTable& table, const std::vector<SourceColumn>& there) {
        std::vector<const SchemaColumn*> all;
        for (const auto& column : table.columns)
            all.push_back(&column);
        try {
            if (const auto wrong = read(table, all, there); !wrong.empty())
                for (const auto& text : wrong)
                    find(true, table, text);
            return;
        } catch (const RuntimeError&) {
            if (cancelled_ != nullptr && *cancelled_)
                throw;
        }
        for (const auto* column : all)
            attempt(table, [&] {
                for (const auto& text : read(table, {column}, there))
                    find(true, table, text);
            });
    }

    /// The sentences about texts that are no numbers, one for each column.
    std::vector<std::string> read(const SchemaTable& table, const std::vector<const SchemaColumn*>& columns,
                                  const std::vector<SourceColumn>& there) {
        std::vector<CellType> types;
        std::vector<std::string> names;
        for (const auto* column : columns) {
            const bool isText = findIn(there, *column)->type == CellType::Text && column->kind == Kind::Number;
            types.push_back(isText ? CellType::Text : cellTypeOf(column->kind));
            names.push_back(column->name);
        }
        auto query = connection_.query(u"Die Tabelle „" + fromUtf8(table.name) + u"“ kann nicht gelesen werden.",
                                       fromUtf8("SELECT " + joined(names) + " FROM " + asItIs(table)), types);
        std::map<std::size_t, std::pair<std::string, std::size_t>> wrong;
        do {
            wrong.clear();
            query->execute({});
            while (query->step())
                for (std::size_t i = 0; i < columns.size(); ++i)
                    cell(*query, i, types[i], columns[i]->kind, wrong);
        } while (!query->finish());
        std::vector<std::string> sentences;
        sentences.reserve(wrong.size());
        for (const auto& [column, found] : wrong)
            sentences.push_back("Die Spalte " + names[column] + " enthält „" + found.first +
                                "“; das ist keine Zahl (" + std::to_string(found.second) +
                                (found.second == 1 ? " Zeile)." : " Zeilen)."));
        return sentences;
    }

    /// As a part of a larger query the table stands for itself, with its keys as it keeps them.
    static std::string asItIs(const SchemaTable& table) { return "(SELECT * FROM\n" + table.name + ") alle"; }

    static void cell(Query& query, std::size_t at, CellType type, Kind kind,
                     std::map<std::size_t, std::pair<std::string, std::size_t>>& wrong) {
        if (type == CellType::Number)
            query.number(at);
        else if (type == CellType::Date)
            query.date(at);
        else if (const auto text = query.text(at); text && kind == Kind::Number && !isNumber(*text))
            ++wrong.try_emplace(at, toUtf8(*text), 0).first->second.second;
    }

    void keys(const SchemaTable& table, const std::vector<SourceColumn>& there) {
        std::vector<std::string> names;
        std::vector<std::string> none; // conditions
        for (const auto& column : table.columns) {
            if (!column.isKey)
                continue;
            names.push_back(column.name);
            none.push_back(column.name + " IS NULL");
            if (findIn(there, column)->type == CellType::Text) // which would pass for the number 0
                none.push_back("LTRIM(" + column.name + ") = ''");
        }
        const auto key = joined(names);
        if (const double empty =
                count(table, "SELECT COUNT(*) FROM " + asItIs(table) + " WHERE " + joined(none, " OR "));
            empty > 0)
            find(true, table, rowsHave(empty) + " einen leeren Schlüssel (" + key + ").");
        if (const double twice = count(table, "SELECT COUNT(*) FROM (SELECT 1 AS eins FROM " + table.name +
                                                  " GROUP BY " + key + " HAVING COUNT(*) > 1) mehrfach");
            twice > 0)
            find(true, table,
                 numberText(twice) + " Schlüssel (" + key + (twice == 1 ? ") kommt" : ") kommen") +
                     " mehrmals vor.");
    }

    /// Rows that no report finds, since the row that they belong to is missing.
    void orphans(const SchemaTable& table, const SchemaTable& parent) {
        std::vector<std::string> conditions;
        for (const auto& column : parent.columns)
            if (column.isKey)
                conditions.push_back(parent.name + "." + column.name + " = " + table.name + "." + column.name);
        const double lost =
            count(table, "SELECT COUNT(*) FROM " + table.name + " WHERE NOT EXISTS (SELECT 1 FROM " + parent.name +
                             " WHERE " + joined(conditions, " AND ") + ")");
        if (lost > 0)
            find(true, table,
                 rowsHave(lost) + " keine in " + parent.name +
                     (lost == 1 ? ", zu der sie gehört; sie wird nicht gedruckt."
                                : ", zu der sie gehören; sie werden nicht gedruckt."));
    }

    /// Years that a company has somewhere and not everywhere.
    void years() {
        std::map<double, std::map<std::string, std::set<int>>> found; // by company and table
        std::map<double, std::set<int>> all;
        std::vector<const SchemaTable*> tables;
        for (const auto& table : schema())
            if (table.isOfCompany() && !table.yearColumn().empty() && isReadable(table))
                tables.push_back(&table);
        for (const auto* table : tables)
            attempt(*table, [&] {
                forEachYear(*table, [&](double company, int year) {
                    found[company][table->name].insert(year);
                    all[company].insert(year);
                });
            });
        std::size_t named = 0;
        for (const auto& [company, years] : all)
            for (const auto* table : tables) {
                std::vector<std::string> missing;
                for (const int year : years)
                    if (!found[company][table->name].contains(year))
                        missing.push_back(std::to_string(year));
                if (missing.empty() || ++named > kMostNamed)
                    continue;
                find(false, *table,
                     "Firma " + numberText(company) + " hat keine Daten für " + joined(missing) + ".");
            }
        if (named > kMostNamed)
            find(false, schema().front(),
                 "… und " + std::to_string(named - kMostNamed) + " weitere Lücken dieser Art.");
    }

    template <class Take>
    void forEachYear(const SchemaTable& table, Take&& take) {
        auto query =
            connection_.query(u"Die Jahre konnten nicht gelesen werden.",
                              fromUtf8("SELECT DISTINCT fnr, " + table.yearColumn() + " FROM " + table.name),
                              {CellType::Number, CellType::Number});
        query->execute({});
        while (query->step()) {
            const auto company = query->number(0);
            const auto year = query->number(1);
            if (company && year)
                take(*company, int(*year));
        }
        query->finish();
    }

    /// How many rows a query counts; none where the source refuses, which is told.
    double count(const SchemaTable& table, const std::string& sql) {
        double rows = 0;
        attempt(table, [&] {
            auto query =
                connection_.query(u"Die Tabelle „" + fromUtf8(table.name) + u"“ kann nicht geprüft werden.",
                                  fromUtf8(sql), {CellType::Number});
            query->execute({});
            if (query->step())
                rows = query->number(0).value_or(0);
            query->finish();
        });
        return rows;
    }

    Connection& connection_;
    Cancellation cancelled_;
    DatabaseCheck result_;
};

} // namespace

DatabaseCheck checkDatabase(Connection& connection, const std::function<void(const std::string& table)>& progress,
                            Cancellation cancelled) {
    Check check(connection, cancelled);
    for (const auto& table : schema()) {
        progress(table.name);
        check.table(table);
    }
    check.relations();
    return check.take();
}

} // namespace kvtdruck
