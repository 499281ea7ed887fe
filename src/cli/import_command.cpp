#include "cli/import_command.h"

#include "catalog/csv_text.h"
#include "cli/cancellation.h"
#include "cli/outcome.h"
#include "cli/values_input.h"
#include "kvtzug/schema.h"
#include "kvtzug/table_import.h"
#include "values/conversion.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace kvtdruck::cli {
namespace {

using catalog::CsvLine;
using catalog::CsvPlace;
using Kind = SchemaColumn::Kind;
using Value = TableImport::Value;

constexpr std::size_t kMostMegabytes = 1024;
constexpr std::size_t kMostCells = 50'000'000;
/// Errors that are told before the rest is only counted.
constexpr std::size_t kMostTold = 20;
/// A column that is passed over.
constexpr std::string_view kUnread = "-";

const SchemaTable& tableOf(const std::string& name) {
    if (const auto* table = findTable(name))
        return *table;
    std::vector<std::string> names;
    for (const auto& table : schema())
        names.push_back(table.name);
    refuse("Die Tabelle „" + name + "“ gibt es nicht" + perhaps(name, names) +
           "; alle Tabellen nennt „kvtdruck datenbank tabellen“.");
}

/// Numbers that mean something only within bounds, and whole.
struct Bounds {
    std::string_view column;
    double lowest;
    double highest;
};
constexpr Bounds kBounds[] = {{"jahr", 1, 9999}, {"fjahr", 1, 9999}, {"monat", 1, 13}, {"kontenart", 1, 2}};

Value numberOf(const SchemaColumn& column, const std::string& text, const CsvPlace& place) {
    const auto number =
        catalog::isGermanNumber(text) ? numberIn(fromUtf8(text), germanLocale()) : std::optional<double>();
    if (!number || !std::isfinite(*number))
        place.fail("„" + catalog::shownText(text) + "“ ist keine deutsche Zahl (1.234,5); " + column.name +
                   " ist eine Zahl.");
    for (const auto& bounds : kBounds)
        if (bounds.column == column.name &&
            (*number < bounds.lowest || *number > bounds.highest || *number != std::trunc(*number)))
            place.fail(column.name + " ist eine ganze Zahl von " + toUtf8(decimal(std::llround(bounds.lowest))) +
                       " bis " + toUtf8(decimal(std::llround(bounds.highest))) + ", nicht „" + text + "“.");
    return *number;
}

/// "31.12.2024" or "2024-12-31".
Value dateOf(const SchemaColumn& column, const std::string& text, const CsvPlace& place) {
    auto date = catalog::germanDateIn(text);
    if (!date && text.size() == 10 && text[4] == '-' && text[7] == '-')
        date = catalog::germanDateIn(text.substr(8, 2) + "." + text.substr(5, 2) + "." + text.substr(0, 4));
    if (!date)
        place.fail("„" + catalog::shownText(text) + "“ ist kein Datum (31.12.2024); " + column.name +
                   " ist ein Datum.");
    const auto day = dayOf(*date);
    char iso[16];
    std::snprintf(iso, sizeof iso, "%04d-%02u-%02u", int(day.year()), unsigned(day.month()), unsigned(day.day()));
    return std::string(iso);
}

Value valueIn(const SchemaColumn& column, const std::string& text, const CsvPlace& place) {
    if (text.empty() && column.isKey)
        place.fail(column.name + " ist ein Schlüssel und darf nicht leer sein.");
    if (text.empty())
        return {};
    switch (column.kind) {
    case Kind::Number:
        return numberOf(column, text, place);
    case Kind::Date:
        return dateOf(column, text, place);
    case Kind::Text:
        break;
    }
    return text;
}

class Import {
  public:
    Import(const Options& options, Console& console)
        : options_(options), console_(console), table_(tableOf(options.words.front())) {}

    int run() {
        std::vector<CsvFile> files;
        for (std::size_t i = 1; i < options_.words.size(); ++i)
            files.push_back(open(options_.words[i]));
        for (const auto& file : files)
            if (file.names() != files.front().names())
                throw catalog::ValuesError(file.name + ": Die Spalten sind andere als in " + files.front().name +
                                           ".");
        TableImport import(options_.database, table_, files.front().names(), options_.creates, options_.tryOnly,
                           &cancelled());
        for (const auto& file : files)
            if (!read(file, import))
                return kCancelled;
        return finish(import);
    }

  private:
    struct CsvFile {
        std::string name;
        std::vector<CsvLine> lines;               ///< without the heading
        std::vector<const SchemaColumn*> columns; ///< by cell; nullptr for one that is passed over

        std::vector<std::string> names() const {
            std::vector<std::string> names;
            for (const auto* column : columns)
                if (column)
                    names.push_back(column->name);
            return names;
        }
    };

    CsvFile open(const std::string& name) const {
        const auto text = catalog::csvText(readCsv(name, kMostMegabytes));
        CsvFile file{name, catalog::csvLines(text, name, kMostCells), {}};
        if (file.lines.empty())
            throw catalog::ValuesError(name + ": Die Datei ist leer.");
        file.columns = columnsOf(file.lines.front(), name);
        file.lines.erase(file.lines.begin());
        return file;
    }

    std::vector<const SchemaColumn*> columnsOf(const CsvLine& heading, const std::string& file) const {
        std::vector<std::string> known;
        for (const auto& column : table_.columns)
            known.push_back(column.name);
        std::vector<const SchemaColumn*> columns;
        for (std::size_t i = 0; i < heading.cells.size(); ++i) {
            const auto& name = heading.cells[i].text;
            const CsvPlace place{file, heading.number, i + 1};
            const auto* column = table_.find(name);
            if (!column && name != kUnread)
                place.fail("Die Tabelle " + table_.name + " hat keine Spalte „" + catalog::shownText(name) + "“" +
                           perhaps(name, known) + ". Die erste Zeile nennt die Spalten; „-“ übergeht eine.");
            if (column && std::ranges::find(columns, column) != columns.end())
                place.fail("Die Spalte „" + name + "“ steht mehrmals in der Kopfzeile.");
            columns.push_back(column);
        }
        for (const auto& column : table_.columns)
            if (column.isKey && std::ranges::find(columns, &column) == columns.end())
                CsvPlace{file, heading.number, heading.cells.size()}.fail("Es fehlt die Schlüsselspalte „" +
                                                                          column.name + "“.");
        return columns;
    }

    /// False where the user has asked to stop.
    bool read(const CsvFile& file, TableImport& import) {
        for (std::size_t i = 0; i < file.lines.size(); ++i) {
            if (cancelled())
                return false;
            console_.progress({"Einlesen: " + file.name, int(100 * i / file.lines.size()), 0});
            try {
                line(file, file.lines[i], import);
            } catch (const catalog::ValuesError& error) {
                tell(error.what());
            } catch (const std::runtime_error& error) {
                if (cancelled())
                    return false;
                tell(file.name + ", Zeile " + std::to_string(file.lines[i].number) + ": " + error.what());
            }
        }
        return true;
    }

    void line(const CsvFile& file, const CsvLine& line, TableImport& import) {
        if (line.cells.size() != file.columns.size())
            CsvPlace{file.name, line.number, line.cells.size()}.fail(
                "Die Zeile hat " + std::to_string(line.cells.size()) + " statt " +
                std::to_string(file.columns.size()) + " Spalten.");
        std::vector<Value> row;
        std::string key;
        for (std::size_t i = 0; i < line.cells.size(); ++i) {
            if (!file.columns[i])
                continue;
            row.push_back(valueIn(*file.columns[i], line.cells[i].text, {file.name, line.number, i + 1}));
            if (file.columns[i]->isKey)
                key += keyText(row.back()) + "\n";
        }
        const auto place = file.name + ", Zeile " + std::to_string(line.number);
        const auto [known, isNew] = lines_.try_emplace(key, place);
        if (!isNew)
            throw std::runtime_error("Derselbe Schlüssel steht schon in " + known->second + ".");
        ++(import.put(row) == TableImport::Effect::Added ? added_ : changed_);
    }

    static std::string keyText(const Value& value) {
        const auto* number = std::get_if<double>(&value);
        return number ? std::to_string(*number) : std::get<std::string>(value);
    }

    void tell(const std::string& error) {
        if (++errors_ <= kMostTold)
            console_.error(error);
    }

    int finish(TableImport& import) const {
        if (errors_ > kMostTold)
            console_.error("… und " + std::to_string(errors_ - kMostTold) + " weitere Fehler.");
        if (errors_ > 0) {
            console_.error("Es wurde nichts eingelesen.");
            return kFailed;
        }
        import.commit();
        console_.notice(table_.name + ": " + rows(added_) + " neu, " + rows(changed_) + " geändert." +
                        (options_.tryOnly ? " Das war eine Probe; an der Datenbank ist nichts geändert." : ""));
        return kDone;
    }

    static std::string rows(std::size_t count) {
        return std::to_string(count) + (count == 1 ? " Zeile" : " Zeilen");
    }

    const Options& options_;
    Console& console_;
    const SchemaTable& table_;
    std::map<std::string, std::string> lines_; ///< where each key stands
    std::size_t added_ = 0;
    std::size_t changed_ = 0;
    std::size_t errors_ = 0;
};

} // namespace

int runImport(const Options& options, Console& console) {
    return Import(options, console).run();
}

} // namespace kvtdruck::cli
