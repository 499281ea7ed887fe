#include "catalog/report_catalog.h"

#include "catalog/usage_error.h"
#include "values/letters.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kvtdruck::catalog {
namespace {

using enum Selection;
using Kind = Cell::Kind;
using enum ValueColumn::Rows;

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

// Columns of the reports whose figures come from a file of values.

constexpr std::array kBilanz{
    ValueColumn{1, "Jahr", First, "Jahr, vierstellig"},
    ValueColumn{2, "Gewinn", First, "Gewinn des Jahres, Währung"},
    ValueColumn{3, "EK", First, "Eigenkapital am Jahresende, Währung"},
    ValueColumn{4, "Umsatz", First, "Umsatz des Jahres, Währung"},
    ValueColumn{5, "ZinsFK", First, "Zinsen auf Fremdkapital im Jahr, Währung"},
    ValueColumn{6, "Bilanz", First, "Bilanzsumme am Jahresende, Währung"},
    ValueColumn{7, "Abschr", First, "Abschreibungen des Jahres, Währung"},
    ValueColumn{8, "Rueckst", First, "Rückstellungen, Währung; im Fremdkapital enthalten"},
    ValueColumn{9, "FK", First, "Fremdkapital, Währung"},
    ValueColumn{10, "LFK", First, "langfristiges Fremdkapital, Währung; im Fremdkapital enthalten"},
    ValueColumn{11, "Anlage", First, "Anlagevermögen, Währung"},
    ValueColumn{12, "Cash", First, "flüssige Mittel, Währung"},
    ValueColumn{13, "Mat", First, "Materialeinsatz des Jahres, Währung"},
    ValueColumn{14, "Lager", First, "Lagerbestand, Währung"},
};

/// The period's columns, which begin at another one in each report.
constexpr std::array<ValueColumn, 4> period(std::size_t first) {
    return {
        ValueColumn{first, "SVMon", First, "erster Monat des Soll-Zeitraums, 1 bis 12"},
        ValueColumn{first + 1, "SBMon", First, "letzter Monat des Soll-Zeitraums, 1 bis 12"},
        ValueColumn{first + 2, "IVMon", First, "erster Monat des Ist-Zeitraums, 1 bis 12"},
        ValueColumn{first + 3, "IBMon", First, "letzter Monat des Ist-Zeitraums, 1 bis 12"},
    };
}

/// Column tables put together from their pieces.
template <std::size_t... sizes>
constexpr auto joined(const std::array<ValueColumn, sizes>&... pieces) {
    std::array<ValueColumn, (sizes + ...)> result{};
    auto* next = result.data();
    ((next = std::copy(pieces.begin(), pieces.end(), next)), ...);
    return result;
}

constexpr auto kBetriebKopf = joined(std::array{ValueColumn{3, "Jahr", First, "Jahr, vierstellig"}}, period(4),
                                     std::array{ValueColumn{8, "Text", Each, "Bezeichnung der Zeile, Text"}});

constexpr auto kBsEMa = joined(
    kBetriebKopf,
    std::array{
        ValueColumn{9, "SAMaDM", Each, "Soll je Kopf aller Mitarbeiter, Währung"},
        ValueColumn{10, "SPMaDM", Each, "Soll je Kopf der produktiven Mitarbeiter, Währung"},
        ValueColumn{11, "SUMaDM", Each, "Soll je Kopf der unproduktiven Mitarbeiter, Währung"},
        ValueColumn{12, "IAMaDM", Each, "Ist je Kopf aller Mitarbeiter, Währung"},
        ValueColumn{13, "IPMaDM", Each, "Ist je Kopf der produktiven Mitarbeiter, Währung"},
        ValueColumn{14, "IUMaDM", Each, "Ist je Kopf der unproduktiven Mitarbeiter, Währung"},
        ValueColumn{15, "DAMaDM", Each, "Differenz Ist minus Soll je Kopf aller Mitarbeiter, Währung"},
        ValueColumn{16, "DPMaDM", Each, "Differenz Ist minus Soll je Kopf der produktiven Mitarbeiter, Währung"},
        ValueColumn{17, "DUMaDM", Each, "Differenz Ist minus Soll je Kopf der unproduktiven Mitarbeiter, Währung"},
    });

constexpr auto kBsEStd =
    joined(kBetriebKopf, std::array{
                             ValueColumn{9, "SDM", Each, "Soll, Währung (bei BsEStd je berechenbarer Stunde)"},
                             ValueColumn{10, "SPR", Each, "Soll in Prozent des Umsatzes"},
                             ValueColumn{11, "IDM", Each, "Ist, Währung (bei BsEStd je berechenbarer Stunde)"},
                             ValueColumn{12, "IPR", Each, "Ist in Prozent des Umsatzes"},
                             ValueColumn{13, "DDM", Each, "Differenz Ist minus Soll, Währung"},
                             ValueColumn{14, "DPR", Each, "Differenz in Prozent des Solls"},
                         });

constexpr auto kKalkW = joined(
    std::array{ValueColumn{1, "Jahr", First, "Jahr, vierstellig"},
               ValueColumn{2, "Text", Each, "Bezeichnung der Zeile, Text"}},
    period(3),
    std::array{
        ValueColumn{7, "SDBPr", Each, "Deckungsbeitrag in Prozent des Verrechnungssatzes, Soll"},
        ValueColumn{8, "SDB", Each, "Deckungsbeitrag je Stunde (oder Minute), Währung, Soll"},
        ValueColumn{9, "SVerPr", Each, "bis zu dieser Stufe verrechnet, in Prozent des Verrechnungssatzes, Soll"},
        ValueColumn{10, "SVer", Each,
                    "Verrechnungssatz bis zu dieser Stufe je Stunde (oder Minute), Währung, Soll"},
        ValueColumn{11, "IDBPr", Each, "Deckungsbeitrag in Prozent des Verrechnungssatzes, Ist"},
        ValueColumn{12, "IDB", Each, "Deckungsbeitrag je Stunde (oder Minute), Währung, Ist"},
        ValueColumn{13, "IVerPr", Each, "bis zu dieser Stufe verrechnet, in Prozent des Verrechnungssatzes, Ist"},
        ValueColumn{14, "IVer", Each, "Verrechnungssatz bis zu dieser Stufe je Stunde (oder Minute), Währung, Ist"},
        ValueColumn{15, "SMateinsatz", First, "Materialeinsatz, Währung, Soll"},
        ValueColumn{16, "SBerStd", First, "berechenbare Stunden, Soll"},
        ValueColumn{17, "SGewMat", First, "Gewinn auf Material, Währung, Soll"},
        ValueColumn{18, "SMatSt", First, "Material je Stunde (oder Minute), Währung, Soll"},
        ValueColumn{19, "SMatZu", First, "Materialzuschlag, Prozent, Soll"},
        ValueColumn{20, "SGewMatStd", First, "Gewinn auf Material je Stunde (oder Minute), Währung, Soll"},
        ValueColumn{21, "IMateinsatz", First, "Materialeinsatz, Währung, Ist"},
        ValueColumn{22, "IBerStd", First, "berechenbare Stunden, Ist"},
        ValueColumn{23, "IGewMat", First, "Gewinn auf Material, Währung, Ist"},
        ValueColumn{24, "IMatSt", First, "Material je Stunde (oder Minute), Währung, Ist"},
        ValueColumn{25, "IMatZu", First, "Materialzuschlag, Prozent, Ist"},
        ValueColumn{26, "IGewMatStd", First, "Gewinn auf Material je Stunde (oder Minute), Währung, Ist"},
        ValueColumn{27, "jeMinute", First, "0: alle Sätze gelten je Stunde; jede andere Zahl: je Minute"},
    });

constexpr auto kWasWenn = joined(
    std::array{ValueColumn{1, "Jahr", First, "Jahr, vierstellig"}}, period(2),
    std::array{
        ValueColumn{6, "Text", Each, "Bezeichnung der Zeile, Text"},
        ValueColumn{7, "SDM", Each, "bisher (Soll), Währung"},
        ValueColumn{8, "PDM", Each, "geplant, Währung"},
        ValueColumn{9, "DDM", Each, "Differenz geplant minus bisher, Währung"},
        ValueColumn{10, "DPr", Each, "Differenz in Prozent von bisher"},
        ValueColumn{11, "UPMa", First, "produktive Mitarbeiter bisher, Köpfe; Bruchteile für Teilzeit"},
        ValueColumn{12, "UStd", First, "berechenbare Stunden bisher, Stunden"},
        ValueColumn{13, "WMa", First, "produktive Mitarbeiter neu, nach den Annahmen, Köpfe"},
        ValueColumn{14, "WStd", First, "berechenbare Stunden neu, nach den Annahmen, Stunden"},
        ValueColumn{15, "SVer", First, "Verrechnungssatz bisher, Währung je Stunde"},
        ValueColumn{16, "IVer", First, "Verrechnungssatz neu, nach den Annahmen, Währung je Stunde"},
        ValueColumn{17, "TVer", First, "Abweichung der Verrechnungssätze, neu minus bisher, Währung je Stunde"},
        ValueColumn{18, "SKnz", Each, "„EUR“: Währung der Firma; sonst steht der Wert selbst als Währung"},
        ValueColumn{19, "BerStd", First, "berechenbare Stunden bisher (Soll), Stunden"},
        ValueColumn{20, "BerStdPr", First, "berechenbare Stunden, angenommene Änderung, Prozent"},
        ValueColumn{21, "BerStdErh", First, "berechenbare Stunden, dieselbe Änderung, Stunden"},
        ValueColumn{22, "ProdLK", First, "produktive Lohnkosten bisher (Soll), Währung"},
        ValueColumn{23, "ProdLKPr", First, "produktive Lohnkosten, angenommene Änderung, Prozent"},
        ValueColumn{24, "ProdLKErh", First, "produktive Lohnkosten, dieselbe Änderung, Währung"},
        ValueColumn{25, "UProdLK", First, "unproduktive Lohnkosten bisher (Soll), Währung"},
        ValueColumn{26, "UProdLKPr", First, "unproduktive Lohnkosten, angenommene Änderung, Prozent"},
        ValueColumn{27, "UProdLKErh", First, "unproduktive Lohnkosten, dieselbe Änderung, Währung"},
        ValueColumn{28, "KULohn", First, "kalkulatorischer Unternehmerlohn bisher (Soll), Währung"},
        ValueColumn{29, "KULohnPr", First, "kalkulatorischer Unternehmerlohn, angenommene Änderung, Prozent"},
        ValueColumn{30, "KULohnErh", First, "kalkulatorischer Unternehmerlohn, dieselbe Änderung, Währung"},
        ValueColumn{31, "Mat", First, "Material bisher (Soll), Währung"},
        ValueColumn{32, "MatPr", First, "Material, angenommene Änderung, Prozent"},
        ValueColumn{33, "MatErh", First, "Material, dieselbe Änderung, Währung"},
        ValueColumn{34, "MatKnz", First, "Material, Kennzeichen der Anwendung: 1 gesetzt, 0 nicht gesetzt"},
        ValueColumn{35, "VGem", First, "variable Gemeinkosten bisher (Soll), Währung"},
        ValueColumn{36, "VGemPr", First, "variable Gemeinkosten, angenommene Änderung, Prozent"},
        ValueColumn{37, "VGemErh", First, "variable Gemeinkosten, dieselbe Änderung, Währung"},
        ValueColumn{38, "VGemKnz", First,
                    "variable Gemeinkosten, Kennzeichen der Anwendung: 1 gesetzt, 0 nicht gesetzt"},
        ValueColumn{39, "FGem", First, "fixe Gemeinkosten bisher (Soll), Währung"},
        ValueColumn{40, "FGemPr", First, "fixe Gemeinkosten, angenommene Änderung, Prozent"},
        ValueColumn{41, "FGemErh", First, "fixe Gemeinkosten, dieselbe Änderung, Währung"},
        ValueColumn{42, "FGemKnz", First,
                    "fixe Gemeinkosten, Kennzeichen der Anwendung: 1 gesetzt, 0 nicht gesetzt"},
        ValueColumn{43, "Aufw", First, "Aufwendungen bisher (Soll), Währung"},
        ValueColumn{44, "AufwPr", First, "Aufwendungen, angenommene Änderung, Prozent"},
        ValueColumn{45, "AufwErh", First, "Aufwendungen, dieselbe Änderung, Währung"},
        ValueColumn{46, "AufwKnz", First, "Aufwendungen, Kennzeichen der Anwendung: 1 gesetzt, 0 nicht gesetzt"},
        ValueColumn{47, "KKost", First, "kalkulatorische Kosten bisher (Soll), Währung"},
        ValueColumn{48, "KKostPr", First, "kalkulatorische Kosten, angenommene Änderung, Prozent"},
        ValueColumn{49, "KKostErh", First, "kalkulatorische Kosten, dieselbe Änderung, Währung"},
        ValueColumn{50, "KKostKnz", First,
                    "kalkulatorische Kosten, Kennzeichen der Anwendung: 1 gesetzt, 0 nicht gesetzt"},
    });

constexpr std::array kUmsatzHW{
    ValueColumn{0, "Jahr", Second, "Jahr, vierstellig; es steht in der zweiten Zeile"},
    ValueColumn{1, "Taglohn", Each, "Taglohnarbeiten, Währung"},
    ValueColumn{2, "WartRechnungen", Each, "Wartungsrechnungen, Währung"},
    ValueColumn{3, "Rechnungen", Each, "Rechnungen, Währung"},
    ValueColumn{4, "AbgrAZ", Each,
                "abgerechnete Abschlagszahlungen, Währung; sie mindern den Saldo und stehen mit Minus"},
    ValueColumn{5, "OffeneAZ", Each, "offene Abschlagszahlungen, Währung"},
    ValueColumn{6, "SchlussRechnung", Each, "Schlussrechnungen, Währung"},
    ValueColumn{7, "Gutschrift", Each, "Gutschriften, Währung; sie stehen mit Minus"},
    ValueColumn{8, "Saldo", Each, "Saldo der Zeile, Währung"},
    ValueColumn{9, "Text", Each, "Bezeichnung der Zeile, Text"},
};

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
    ReportEntry{"Bilanz", "Bilanzkennzahlen", {}, {}, kBilanz, {}},
    ReportEntry{"BsEMa", "Betriebsübersicht Mitarbeiter", {}, {}, kBsEMa, {}},
    ReportEntry{"BsEStd", "Betriebsübersicht je Stunde", {}, {}, kBsEStd, {}},
    ReportEntry{"BsEGes", "Betriebsübersicht Gesamt", {}, {}, kBsEStd, "Die erste Zeile trägt die Stunden."},
    ReportEntry{"KalkW", "Kalkulationswerte", {}, {}, kKalkW, {}},
    ReportEntry{"WasWenn", "Was Wäre Wenn", {}, {}, kWasWenn, {}},
    ReportEntry{"UmsatzHW", "Umsatz Handwerk", {}, {}, kUmsatzHW, {}},
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

std::span<const SelectionOption> selectionOptions() {
    return kSelectionOptions;
}

std::span<const ReportEntry> reports() {
    return kReports;
}

const Axis* ReportEntry::axisFrom(Selection from) const {
    const auto found = std::ranges::find(axes, from, &Axis::from);
    return found == axes.end() ? nullptr : &*found;
}

std::size_t ReportEntry::rows() const {
    return std::ranges::find(columns, Second, &ValueColumn::rows) == columns.end() ? 1 : 2;
}

std::size_t ReportEntry::width() const {
    return isFedByValues() ? std::ranges::max(columns, {}, &ValueColumn::column).column + 1 : cells.size();
}

std::vector<const SelectionOption*> ReportEntry::selections() const {
    std::vector<const SelectionOption*> result;
    for (const auto& option : kSelectionOptions)
        if (takes(*this, option.selection))
            result.push_back(&option);
    return result;
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
