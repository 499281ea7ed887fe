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
    ValueColumn{1, "Jahr", First, "Jahr des Blattes"},
    ValueColumn{2, "Gewinn", First, "Gewinn"},
    ValueColumn{3, "EK", First, "Eigenkapital"},
    ValueColumn{4, "Umsatz", First, "Umsatz"},
    ValueColumn{5, "ZinsFK", First, "Zinsen auf Fremdkapital"},
    ValueColumn{6, "Bilanz", First, "Bilanzsumme"},
    ValueColumn{7, "Abschr", First, "Abschreibungen"},
    ValueColumn{8, "Rueckst", First, "Rückstellungen (im Fremdkapital enthalten)"},
    ValueColumn{9, "FK", First, "Fremdkapital"},
    ValueColumn{10, "LFK", First, "langfristiges Fremdkapital"},
    ValueColumn{11, "Anlage", First, "Anlagevermögen"},
    ValueColumn{12, "Cash", First, "flüssige Mittel"},
    ValueColumn{13, "Mat", First, "Material"},
    ValueColumn{14, "Lager", First, "Lagerbestand"},
};

/// The period's columns, which begin at another one in each report.
constexpr std::array<ValueColumn, 4> period(std::size_t first) {
    return {
        ValueColumn{first, "SVMon", First, "Soll-Zeitraum: erster Monat"},
        ValueColumn{first + 1, "SBMon", First, "Soll-Zeitraum: letzter Monat"},
        ValueColumn{first + 2, "IVMon", First, "Ist-Zeitraum: erster Monat"},
        ValueColumn{first + 3, "IBMon", First, "Ist-Zeitraum: letzter Monat"},
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

constexpr auto kBetriebKopf = joined(std::array{ValueColumn{3, "Jahr", First, "Jahr"}}, period(4),
                                     std::array{ValueColumn{8, "Text", Each, "Bezeichnung der Zeile"}});

constexpr auto kBsEMa = joined(kBetriebKopf, std::array{
                                                 ValueColumn{9, "SAMaDM", Each, "Soll A je Mitarbeiter"},
                                                 ValueColumn{10, "SPMaDM", Each, "Soll P je Mitarbeiter"},
                                                 ValueColumn{11, "SUMaDM", Each, "Soll U je Mitarbeiter"},
                                                 ValueColumn{12, "IAMaDM", Each, "Ist A je Mitarbeiter"},
                                                 ValueColumn{13, "IPMaDM", Each, "Ist P je Mitarbeiter"},
                                                 ValueColumn{14, "IUMaDM", Each, "Ist U je Mitarbeiter"},
                                                 ValueColumn{15, "DAMaDM", Each, "Differenz A je Mitarbeiter"},
                                                 ValueColumn{16, "DPMaDM", Each, "Differenz P je Mitarbeiter"},
                                                 ValueColumn{17, "DUMaDM", Each, "Differenz U je Mitarbeiter"},
                                             });

constexpr auto kBsEStd = joined(kBetriebKopf, std::array{
                                                  ValueColumn{9, "SDM", Each, "Soll, Betrag"},
                                                  ValueColumn{10, "SPR", Each, "Soll, Prozent"},
                                                  ValueColumn{11, "IDM", Each, "Ist, Betrag"},
                                                  ValueColumn{12, "IPR", Each, "Ist, Prozent"},
                                                  ValueColumn{13, "DDM", Each, "Differenz, Betrag"},
                                                  ValueColumn{14, "DPR", Each, "Differenz, Prozent"},
                                              });

constexpr auto kKalkW =
    joined(std::array{ValueColumn{1, "Jahr", First, "Jahr"}, ValueColumn{2, "Text", Each, "Bezeichnung der Zeile"}},
           period(3),
           std::array{
               ValueColumn{7, "SDBPr", Each, "Soll-Deckungsbeitrag, Prozent"},
               ValueColumn{8, "SDB", Each, "Soll-Deckungsbeitrag"},
               ValueColumn{9, "SVerPr", Each, "Soll Ver, Prozent"},
               ValueColumn{10, "SVer", Each, "Soll Ver"},
               ValueColumn{11, "IDBPr", Each, "Ist-Deckungsbeitrag, Prozent"},
               ValueColumn{12, "IDB", Each, "Ist-Deckungsbeitrag"},
               ValueColumn{13, "IVerPr", Each, "Ist Ver, Prozent"},
               ValueColumn{14, "IVer", Each, "Ist Ver"},
               ValueColumn{15, "SMateinsatz", First, "Soll-Materialeinsatz"},
               ValueColumn{16, "SBerStd", First, "Soll, berechenbare Stunden"},
               ValueColumn{17, "SGewMat", First, "Soll-Gewinn auf Material"},
               ValueColumn{18, "SMatSt", First, "Soll MatSt"},
               ValueColumn{19, "SMatZu", First, "Soll-Materialzuschlag"},
               ValueColumn{20, "SGewMatStd", First, "Soll-Gewinn auf Material je Stunde"},
               ValueColumn{21, "IMateinsatz", First, "Ist-Materialeinsatz"},
               ValueColumn{22, "IBerStd", First, "Ist, berechenbare Stunden"},
               ValueColumn{23, "IGewMat", First, "Ist-Gewinn auf Material"},
               ValueColumn{24, "IMatSt", First, "Ist MatSt"},
               ValueColumn{25, "IMatZu", First, "Ist-Materialzuschlag"},
               ValueColumn{26, "IGewMatStd", First, "Ist-Gewinn auf Material je Stunde"},
               ValueColumn{27, "jeMinute", First, "0: je Stunde, sonst je Minute"},
           });

constexpr auto kWasWenn =
    joined(std::array{ValueColumn{1, "Jahr", First, "Jahr"}}, period(2),
           std::array{
               ValueColumn{6, "Text", Each, "Bezeichnung der Zeile"},
               ValueColumn{7, "SDM", Each, "Soll, Betrag"},
               ValueColumn{8, "PDM", Each, "geplant, Betrag"},
               ValueColumn{9, "DDM", Each, "Differenz, Betrag"},
               ValueColumn{10, "DPr", Each, "Differenz, Prozent"},
               ValueColumn{11, "UPMa", First, "UPMa"},
               ValueColumn{12, "UStd", First, "UStd"},
               ValueColumn{13, "WMa", First, "WMa"},
               ValueColumn{14, "WStd", First, "WStd"},
               ValueColumn{15, "SVer", First, "Soll Ver"},
               ValueColumn{16, "IVer", First, "Ist Ver"},
               ValueColumn{17, "TVer", First, "TVer"},
               ValueColumn{18, "SKnz", Each, "„EUR“: Währung der Firma; sonst steht der Wert selbst als Währung"},
               ValueColumn{19, "BerStd", First, "berechenbare Stunden"},
               ValueColumn{20, "BerStdPr", First, "berechenbare Stunden, Änderung in Prozent"},
               ValueColumn{21, "BerStdErh", First, "berechenbare Stunden, Erhöhung"},
               ValueColumn{22, "ProdLK", First, "produktive Lohnkosten"},
               ValueColumn{23, "ProdLKPr", First, "produktive Lohnkosten, Änderung in Prozent"},
               ValueColumn{24, "ProdLKErh", First, "produktive Lohnkosten, Erhöhung"},
               ValueColumn{25, "UProdLK", First, "unproduktive Lohnkosten"},
               ValueColumn{26, "UProdLKPr", First, "unproduktive Lohnkosten, Änderung in Prozent"},
               ValueColumn{27, "UProdLKErh", First, "unproduktive Lohnkosten, Erhöhung"},
               ValueColumn{28, "KULohn", First, "KULohn"},
               ValueColumn{29, "KULohnPr", First, "KULohn, Änderung in Prozent"},
               ValueColumn{30, "KULohnErh", First, "KULohn, Erhöhung"},
               ValueColumn{31, "Mat", First, "Material"},
               ValueColumn{32, "MatPr", First, "Material, Änderung in Prozent"},
               ValueColumn{33, "MatErh", First, "Material, Erhöhung"},
               ValueColumn{34, "MatKnz", First, "Material, Kennzeichen"},
               ValueColumn{35, "VGem", First, "variable Gemeinkosten"},
               ValueColumn{36, "VGemPr", First, "variable Gemeinkosten, Änderung in Prozent"},
               ValueColumn{37, "VGemErh", First, "variable Gemeinkosten, Erhöhung"},
               ValueColumn{38, "VGemKnz", First, "variable Gemeinkosten, Kennzeichen"},
               ValueColumn{39, "FGem", First, "fixe Gemeinkosten"},
               ValueColumn{40, "FGemPr", First, "fixe Gemeinkosten, Änderung in Prozent"},
               ValueColumn{41, "FGemErh", First, "fixe Gemeinkosten, Erhöhung"},
               ValueColumn{42, "FGemKnz", First, "fixe Gemeinkosten, Kennzeichen"},
               ValueColumn{43, "Aufw", First, "Aufwendungen"},
               ValueColumn{44, "AufwPr", First, "Aufwendungen, Änderung in Prozent"},
               ValueColumn{45, "AufwErh", First, "Aufwendungen, Erhöhung"},
               ValueColumn{46, "AufwKnz", First, "Aufwendungen, Kennzeichen"},
               ValueColumn{47, "KKost", First, "kalkulatorische Kosten"},
               ValueColumn{48, "KKostPr", First, "kalkulatorische Kosten, Änderung in Prozent"},
               ValueColumn{49, "KKostErh", First, "kalkulatorische Kosten, Erhöhung"},
               ValueColumn{50, "KKostKnz", First, "kalkulatorische Kosten, Kennzeichen"},
           });

constexpr std::array kUmsatzHW{
    ValueColumn{0, "Jahr", Second, "Jahr; es steht in der zweiten Zeile"},
    ValueColumn{1, "Taglohn", Each, "Taglohnarbeiten"},
    ValueColumn{2, "WartRechnungen", Each, "Wartungsrechnungen"},
    ValueColumn{3, "Rechnungen", Each, "Rechnungen"},
    ValueColumn{4, "AbgrAZ", Each, "abgerechnete Abschlagszahlungen"},
    ValueColumn{5, "OffeneAZ", Each, "offene Abschlagszahlungen"},
    ValueColumn{6, "SchlussRechnung", Each, "Schlussrechnungen"},
    ValueColumn{7, "Gutschrift", Each, "Gutschriften"},
    ValueColumn{8, "Saldo", Each, "Saldo"},
    ValueColumn{9, "Text", Each, "Bezeichnung der Zeile"},
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
