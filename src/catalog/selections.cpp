// What users select, and the parameter cells that it becomes.
#include "catalog/report_catalog.h"
#include "catalog/usage_error.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kvtdruck::catalog {
namespace {

using enum Selection;
using Kind = Cell::Kind;

constexpr std::array kSelectionOptions{
    SelectionOption{Year, "--jahr", "JAHR", "ein Jahr", 1, 9999},
    SelectionOption{YearFrom, "--von", "JAHR", "erstes Jahr", 1, 9999},
    SelectionOption{YearTo, "--bis", "JAHR", "letztes Jahr", 1, 9999},
    SelectionOption{AccountFrom, "--konto-von", "KONTO", "erstes Konto", 0, 999'999'999},
    SelectionOption{AccountTo, "--konto-bis", "KONTO", "letztes Konto", 0, 999'999'999},
    SelectionOption{Month, "--monat", "MONAT", "Monat, dessen Werte neben denen des Jahres stehen", 1, 12},
    SelectionOption{EmployeeFrom, "--mitarbeiter-von", "NUMMER", "erster Mitarbeiter", 0, 999'999'999},
    SelectionOption{EmployeeTo, "--mitarbeiter-bis", "NUMMER", "letzter Mitarbeiter", 0, 999'999'999},
    SelectionOption{MonthFrom, "--monat-von", "MONAT", "erster Monat (sonst das ganze Jahr)", 1, 12},
    SelectionOption{MonthTo, "--monat-bis", "MONAT", "letzter Monat (sonst das ganze Jahr)", 1, 12},
};

bool takes(const ReportEntry& report, Selection selection) {
    const auto fills = [selection](const Cell& cell) {
        return cell.kind != Kind::True &&
               (cell.first == selection || (cell.kind == Kind::NoneGiven && cell.second == selection));
    };
    const auto bounds = [selection](const Axis& axis) { return axis.from == selection || axis.to == selection; };
    // One year is short for a range of years.
    return std::ranges::any_of(report.cells, fills) || std::ranges::any_of(report.axes, bounds) ||
           (selection == Year && takes(report, YearFrom));
}

const SelectionOption& optionOf(Selection selection) {
    return *std::ranges::find(kSelectionOptions, selection, &SelectionOption::selection);
}

std::string selectionsText(const ReportEntry& report) {
    std::string text;
    for (const auto* option : report.selections())
        text += (text.empty() ? "" : ", ") + std::string(option->option);
    return text;
}

void refuseForeign(const ReportEntry& report, const Selections& selections) {
    for (const auto& [selection, value] : selections) {
        if (takes(report, selection))
            continue;
        const auto known = selectionsText(report);
        throw UsageError(std::string(optionOf(selection).option) + " gilt nicht für die Liste " +
                         std::string(report.listName) +
                         (known.empty() ? ", die keine Auswahl kennt." : "; sie kennt " + known + "."));
    }
}

/// The selections with one year spread to the range that it stands for.
Selections spread(const ReportEntry& report, Selections selections) {
    const auto year = selections.find(Year);
    if (year == selections.end() || !takes(report, YearFrom))
        return selections;
    if (selections.contains(YearFrom) || selections.contains(YearTo))
        throw UsageError("Bitte entweder --jahr oder --von und --bis angeben.");
    selections[YearFrom] = selections[YearTo] = year->second;
    selections.erase(year);
    return selections;
}

/// A selection's value as a cell. The component hands bounds on as numbers of single precision; what becomes
/// another number there would select something else, or nothing, without a word.
Variant cellOf(Selection selection, std::int32_t value) {
    const auto single = static_cast<float>(value);
    if (double{single} == value)
        return value;
    throw UsageError(
        std::string(optionOf(selection).option) + " " + std::to_string(value) +
        " kann nicht ausgewählt werden: Auswahlen haben einfache Genauigkeit, die ab 16777216 nicht jede "
        "Zahl kennt (statt dieser " +
        std::to_string(static_cast<std::int64_t>(single)) + ").");
}

Variant valueOf(const ReportEntry& report, const Cell& cell, const Selections& selections) {
    const auto given = selections.find(cell.first);
    switch (cell.kind) {
    case Kind::True:
        return true;
    case Kind::NoneGiven:
        return given == selections.end() && !selections.contains(cell.second);
    case Kind::MustBeGiven:
        if (given == selections.end())
            throw UsageError("Die Liste " + std::string(report.listName) + " braucht " +
                             std::string(optionOf(cell.first).option) + ".");
        break;
    case Kind::Value:
        break;
    }
    if (given != selections.end())
        return cellOf(cell.first, given->second);
    return cell.fallback ? Variant(*cell.fallback) : Variant();
}

} // namespace

std::span<const SelectionOption> selectionOptions() {
    return kSelectionOptions;
}

std::vector<const SelectionOption*> ReportEntry::selections() const {
    std::vector<const SelectionOption*> result;
    for (const auto& option : kSelectionOptions)
        if (takes(*this, option.selection))
            result.push_back(&option);
    return result;
}

Selections selectionsForDesign(const ReportEntry& report, Selections selections) {
    if (takes(report, Month))
        selections.try_emplace(Month, 1);
    return selections;
}

Selections rangesOf(const ReportEntry& report, const Selections& selections) {
    refuseForeign(report, selections);
    return spread(report, selections);
}

std::shared_ptr<ParameterArray> parameterArray(const ReportEntry& report, const Selections& selections) {
    refuseForeign(report, selections);
    // The account reports have a cell for their one year.
    const bool needsOne = std::ranges::find(report.cells, Kind::MustBeGiven, &Cell::kind) != report.cells.end();
    const auto given = needsOne ? selections : spread(report, selections);
    auto array = std::make_shared<ParameterArray>(report.rows(), report.width());
    for (std::size_t column = 0; column < report.cells.size(); ++column)
        array->cell(0, column) = valueOf(report, report.cells[column], given);
    return array;
}

} // namespace kvtdruck::catalog
