#include "catalog/report_catalog.h"

#include "catalog/value_columns.h"
#include "values/letters.h"

#include <algorithm>
#include <array>

namespace kvtdruck::catalog {
namespace {

using enum Selection;
using Kind = Cell::Kind;

// Parameter cells of the reports that read their figures themselves.

constexpr std::array kYears{
    Cell{Kind::NoneGiven, YearFrom, YearTo},
    Cell{Kind::Value, YearFrom, {}, 0},
    Cell{Kind::Value, YearTo, {}, 0},
};
/// Years of a report that prints the range as it is given.
constexpr std::array kYearRange{
    Cell{Kind::NoneGiven, YearFrom, YearTo},
    Cell{Kind::Value, YearFrom, {}, 0},
    Cell{Kind::Value, YearTo, {}, 9999},
};
constexpr std::array kAccounts{
    Cell{Kind::NoneGiven, AccountFrom, AccountTo},
    Cell{Kind::Value, AccountFrom, {}, 0},
    Cell{Kind::Value, AccountTo, {}, 0},
    Cell{Kind::Value, Month},
    Cell{Kind::MustBeGiven, Year},
};
constexpr std::array kEmployees{
    Cell{Kind::NoneGiven, EmployeeFrom, EmployeeTo},
    Cell{Kind::Value, EmployeeFrom, {}, 0},
    Cell{Kind::Value, EmployeeTo, {}, 0},
    Cell{Kind::NoneGiven, MonthFrom, MonthTo},
    Cell{Kind::Value, MonthFrom, {}, 1},
    Cell{Kind::Value, MonthTo, {}, 12},
};
constexpr auto kEmployeesOnly = std::span(kEmployees).first<3>();
constexpr std::array kEverything{Cell{Kind::True}};

// What of a range the component takes at once.

using enum Axis::Takes;

constexpr std::array kYearAxis{Axis{OneOrAll, YearFrom, YearTo, YearFrom, YearTo, "Jahr", "Jahre"}};
constexpr std::array kYearRangeAxis{Axis{Range, YearFrom, YearTo, YearFrom, YearTo, "Jahr", "Jahre"}};
constexpr std::array kAccountAxes{
    Axis{One, YearFrom, YearTo, Year, Year, "Jahr", "Jahre"},
    Axis{OneOrAll, AccountFrom, AccountTo, AccountFrom, AccountTo, "Konto", "Konten"},
};
constexpr std::array kEmployeeAxes{
    Axis{Nothing, YearFrom, YearTo, YearFrom, YearTo, "Jahr", "Jahre"},
    Axis{OneOrAll, EmployeeFrom, EmployeeTo, EmployeeFrom, EmployeeTo, "Mitarbeiter", "Mitarbeiter"}};

// Both account reports ask for accounts by the same call; the product mode says which kind is meant.
constexpr std::int16_t kOverheads = 1;
constexpr std::int16_t kNeutralAccounts = 2;

constexpr std::array kReports{
    ReportEntry{"Umsatz", "Umsatz", kYears, kYearAxis, {}, {}},
    ReportEntry{"MitUeber", "Mitarbeiter-Übersicht", kEverything, {}, {}, {}},
    ReportEntry{"Firma", "Allgemeine Firmendaten", kYearRange, kYearRangeAxis, {}, {}},
    ReportEntry{"GemeinK", "Gemeinkosten", kAccounts, kAccountAxes, {}, {}, kOverheads},
    ReportEntry{"NeutralA", "Neutrale Aufwendungen", kAccounts, kAccountAxes, {}, {}, kNeutralAccounts},
    ReportEntry{"MaKost", "Mitarbeiter-Kosten", kEmployees, kEmployeeAxes, {}, {}},
    ReportEntry{"MaZeit", "Mitarbeiter-Zeiten", kEmployees, kEmployeeAxes, {}, {}},
    ReportEntry{"MaStKost", "Mitarbeiter-Stammblatt-Kosten", kEmployeesOnly, kEmployeeAxes, {}, {}},
    ReportEntry{"MaStZeit", "Mitarbeiter-Stammblatt-Zeiten", kEmployeesOnly, kEmployeeAxes, {}, {}},
    ReportEntry{"KalkKo", "Kalkulatorische Kosten", kYears, kYearAxis, {}, {}},
    ReportEntry{"MatUeber", "Materialübersicht", kYears, kYearAxis, {}, {}},
    ReportEntry{"Bilanz", "Bilanzkennzahlen", {}, {}, columns::kBilanz, {}},
    ReportEntry{"BsEMa", "Betriebsübersicht Mitarbeiter", {}, {}, columns::kBsEMa, {}},
    ReportEntry{"BsEStd", "Betriebsübersicht je Stunde", {}, {}, columns::kBsEStd, {}},
    ReportEntry{
        "BsEGes", "Betriebsübersicht Gesamt", {}, {}, columns::kBsEStd, "Die erste Zeile trägt die Stunden."},
    ReportEntry{"KalkW", "Kalkulationswerte", {}, {}, columns::kKalkW, {}},
    ReportEntry{"WasWenn", "Was Wäre Wenn", {}, {}, columns::kWasWenn, {}},
    ReportEntry{"UmsatzHW", "Umsatz Handwerk", {}, {}, columns::kUmsatzHW, {}},
};

/// Small letters for the capitals of German words.
std::string lowered(std::string_view text) {
    std::string result = asciiLower(text);
    for (std::size_t i = 0; i < result.size(); ++i) {
        // Ä, Ö and Ü are 0xC3 0x84, 0x96 and 0x9C in UTF-8; their small letters lie 0x20 behind.
        const bool umlaut =
            i > 0 && result[i - 1] == '\xc3' && (result[i] == '\x84' || result[i] == '\x96' || result[i] == '\x9c');
        if (umlaut)
            result[i] = char(result[i] + 0x20);
    }
    return result;
}

} // namespace

std::span<const ReportEntry> reports() {
    return kReports;
}

const Axis* ReportEntry::axisFrom(Selection from) const {
    const auto found = std::ranges::find(axes, from, &Axis::from);
    return found == axes.end() ? nullptr : &*found;
}

std::size_t ReportEntry::rows() const {
    return std::ranges::find(columns, ValueColumn::Rows::Second, &ValueColumn::rows) == columns.end() ? 1 : 2;
}

std::size_t ReportEntry::width() const {
    return isFedByValues() ? std::ranges::max(columns, {}, &ValueColumn::column).column + 1 : cells.size();
}

const ReportEntry* findReport(std::string_view listName) {
    const auto* found = std::ranges::find(kReports, listName, &ReportEntry::listName);
    return found == kReports.end() ? nullptr : found;
}

const ReportEntry* findReportLike(std::string_view nameOrTitle) {
    const auto wanted = lowered(nameOrTitle);
    const auto* found = std::ranges::find_if(kReports, [&](const ReportEntry& report) {
        return lowered(report.listName) == wanted || lowered(report.title) == wanted;
    });
    return found == kReports.end() ? nullptr : found;
}

std::optional<std::string> nearestWord(std::string_view mistyped, std::span<const std::string> words) {
    if (words.empty())
        return std::nullopt;
    const auto edits = [&](const std::string& word) { return editDistance(lowered(word), lowered(mistyped)); };
    const auto& nearest = std::ranges::min(words, {}, edits);
    return edits(nearest) <= std::max(nearest.size(), mistyped.size()) / 2 ? std::optional(nearest) : std::nullopt;
}

} // namespace kvtdruck::catalog
