#include "catalog/values_file.h"

#include "catalog/csv_text.h"
#include "values/conversion.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>

namespace kvtdruck::catalog {
namespace {

/// More than the largest report can be handed: memory is bounded, whatever the file holds.
constexpr std::size_t kMostCells = 1'000'000;

/// The value of a cell without quotes.
Variant valueOf(const std::string& text, const CsvPlace& place) {
    if (text.empty())
        return {};
    if (isGermanNumber(text)) {
        const auto value = numberIn(fromUtf8(text), germanLocale());
        if (value && std::isfinite(*value))
            return *value;
        place.fail("Die Zahl „" + shownText(text) + "“ ist zu groß.");
    }
    if (const auto date = germanDateIn(text))
        return *date;
    if (looksLikeNumber(text))
        place.fail("„" + shownText(text) +
                   "“ ist weder eine deutsche Zahl (1.234,5) noch ein Datum (31.12.2024); ein Text steht in "
                   "Anführungszeichen.");
    if (text == "Wahr" || text == "Falsch")
        return text == "Wahr";
    return fromUtf8(text);
}

const ValueColumn* findColumn(const ReportEntry& report, const std::string& name) {
    const auto found = std::ranges::find(report.columns, name, &ValueColumn::name);
    return found == report.columns.end() ? nullptr : &*found;
}

/// A column that the report does not read.
constexpr std::string_view kUnread = "-";

/// Whether the line names columns: it holds no number, and one of its cells is a column's name without quotes.
bool isHeading(const ReportEntry& report, const CsvLine& line) {
    const auto isNumber = [](const CsvCell& cell) { return !cell.quoted && beginsAsNumber(cell.text); };
    const auto isName = [&](const CsvCell& cell) { return !cell.quoted && findColumn(report, cell.text); };
    return std::ranges::none_of(line.cells, isNumber) && std::ranges::any_of(line.cells, isName);
}

std::string namesOf(const ReportEntry& report) {
    std::string names;
    for (const auto& column : report.columns)
        names += (names.empty() ? "" : ", ") + std::string(column.name);
    return names;
}

/// For each of a line's cells the array's column; none for a cell that is passed over.
using Columns = std::vector<std::optional<std::size_t>>;

Columns columnsOf(const ReportEntry& report, const CsvLine& heading, const std::string& file) {
    Columns columns;
    for (std::size_t i = 0; i < heading.cells.size(); ++i) {
        const CsvPlace place{file, heading.number, i + 1};
        const auto& name = heading.cells[i].text;
        if (name == kUnread) {
            columns.emplace_back();
            continue;
        }
        const auto* column = findColumn(report, name);
        if (!column)
            place.fail("Die Liste " + std::string(report.listName) + " hat keine Spalte „" + name +
                       "“; sie kennt " + namesOf(report) + ".");
        if (std::ranges::find(columns, std::optional(column->column)) != columns.end())
            place.fail("Die Spalte „" + name + "“ steht mehrmals in der Kopfzeile.");
        columns.emplace_back(column->column);
    }
    return columns;
}

Columns columnsInOrder(std::size_t count) {
    Columns columns;
    for (std::size_t i = 0; i < count; ++i)
        columns.emplace_back(i);
    return columns;
}

/// Columns that the array needs for a file without a heading, which may hold more than the report reads.
std::size_t widthOf(const ReportEntry& report, const Columns& columns) {
    return std::max(report.width(), std::ranges::max(columns).value_or(0) + 1);
}

} // namespace

std::shared_ptr<ParameterArray> parseValues(const ReportEntry& report, std::string_view text,
                                            const std::string& file) {
    auto lines = csvLines(csvText(text), file, kMostCells);
    Columns columns;
    if (!lines.empty() && isHeading(report, lines.front())) {
        columns = columnsOf(report, lines.front(), file);
        lines.erase(lines.begin());
    } else if (!lines.empty()) {
        columns = columnsInOrder(lines.front().cells.size());
    }
    if (lines.empty())
        throw ValuesError(file + ": Die Datei enthält keine Werte.");

    auto array = std::make_shared<ParameterArray>(lines.size(), widthOf(report, columns));
    for (std::size_t row = 0; row < lines.size(); ++row) {
        const auto& line = lines[row];
        if (line.cells.size() != columns.size())
            CsvPlace{file, line.number, line.cells.size()}.fail("Die Zeile hat " +
                                                                std::to_string(line.cells.size()) + " statt " +
                                                                std::to_string(columns.size()) + " Spalten.");
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (!columns[i])
                continue;
            const auto& cell = line.cells[i];
            array->cell(row, *columns[i]) =
                cell.quoted ? Variant(fromUtf8(cell.text)) : valueOf(cell.text, {file, line.number, i + 1});
        }
    }
    return array;
}

} // namespace kvtdruck::catalog
