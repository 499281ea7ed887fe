#include "cli/report_workbooks.h"

#include "cli/personnel_workbooks.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace kvtdruck::cli {
namespace {

using druckwerk::PlanColumn;
using druckwerk::PlanFact;
using druckwerk::PlanTable;
using druckwerk::WorkbookPlan;
using enum druckwerk::CellFormat;
using Rows = PlanTable::Rows;

constexpr std::array kUmsatzMonths{
    PlanColumn{"Jahr", "Fuerjahr", Whole, "Summe"},
    PlanColumn{"Monat", "#", MonthName},
    PlanColumn{"Soll", "sUmsatzDM_##", Amount, "sum"},
    PlanColumn{"Ist", "IUmsatzDM_##", Amount, "sum"},
    PlanColumn{"Abweichung", "=IUmsatzDM_##-sUmsatzDM_##", AmountDeviation, "=IUmsatzDM_##-sUmsatzDM_##"},
    PlanColumn{"Abw. %", "=(IUmsatzDM_##-sUmsatzDM_##)/abs(sUmsatzDM_##)*100", PercentDeviation,
               "=(IUmsatzDM_##-sUmsatzDM_##)/abs(sUmsatzDM_##)*100"},
    PlanColumn{"Anteil %", "IUmsatzDM_##/IUmsatzDM*100", Percent},
};
constexpr std::array kUmsatz{PlanTable{"Umsatz", Rows::Months, kUmsatzMonths}};

constexpr std::array kEmployees{
    PlanColumn{"Nr.", "Nummer", Whole},
    PlanColumn{"Name", "Name"},
    PlanColumn{"Vorname", "Vorname"},
    PlanColumn{"Anrede", "Anrede", Text, {}, {}, 10},
    PlanColumn{"Art", "Art"},
    PlanColumn{"Familienstand", "Stand"},
    PlanColumn{"Straße", "Strasse", Text, {}, {}, 26},
    PlanColumn{"PLZ", "Plz", PostalCode},
    PlanColumn{"Ort", "Ort"},
    PlanColumn{"Telefon", "Telefon1"},
    PlanColumn{"Telefon", "Telefon2"},
    PlanColumn{"Telefax", "Fax"},
    PlanColumn{"Geboren", "Geburtsdatum", Date},
    PlanColumn{"Eintritt", "Eintrittsdatum", Date},
    PlanColumn{"Austritt", "Austrittsdatum", Date},
};
constexpr std::array kMitUeber{PlanTable{"Mitarbeiter", Rows::Records, kEmployees}};

// Tables of what a report has once for each year.

constexpr std::array kYearlyValue{
    PlanColumn{"Jahr", "FuerJahr", Whole},
    PlanColumn{"Bereich", "@group", Text, {}, {}, 24},
    PlanColumn{"Größe", "@label", Text, {}, {}, 32},
    PlanColumn{"Wert", "@1", OfFact, {}, {}, 16},
    PlanColumn{"Einheit", "@unit", Text, {}, {}, 10},
};
constexpr std::array kFirmaFacts{
    PlanFact{"Kalender", "Tage des Jahres", Whole, "Tage", {"Jahrestage"}},
    PlanFact{"Kalender", "Samstage", Whole, "Tage", {"AnzahlSamstage"}},
    PlanFact{"Kalender", "Sonntage", Whole, "Tage", {"AnzahlSonntage"}},
    PlanFact{"Kalender", "Feiertage", Whole, "Tage", {"AnzahlFeiertage"}},
    PlanFact{"Kalender", "davon an Samstagen", Whole, "Tage", {"AnzahlFeiertageSam"}},
    PlanFact{"Kalender", "davon an Sonntagen", Whole, "Tage", {"AnzahlFeiertageSon"}},
    PlanFact{"Sozialversicherung", "Rentenversicherung", Rate, "%", {"Rentenversicherung"}},
    PlanFact{"Sozialversicherung", "Krankenversicherung", Rate, "%", {"Krankenversicherung"}},
    PlanFact{"Sozialversicherung", "Arbeitslosenversicherung", Rate, "%", {"Arbeitslosenversicherung"}},
    PlanFact{"Sozialversicherung", "Pflegeversicherung", Rate, "%", {"Pflegeversicherung"}},
    PlanFact{"Sozialversicherung", "Erstattungsumlage", Rate, "%", {"Erstattungsumlage"}},
    PlanFact{"Sozialversicherung", "Steuersatz Aushilfen", Rate, "%", {"SteuersatzAushilfe"}},
    PlanFact{
        "Sozialversicherung", "Beitragsgrenze Rente je Monat", Amount, "FnrWaehrung", {"GrenzeRentenversicherung"}},
    PlanFact{"Sozialversicherung", "Grenze Aushilfskraft je Monat", Amount, "FnrWaehrung", {"GrenzeAushilfskraft"}},
    PlanFact{
        "Sozialversicherung", "Grenze Geringverdiener je Monat", Amount, "FnrWaehrung", {"GrenzeGeringverdiener"}},
    PlanFact{"Arbeitszeit und Urlaub", "Tagesarbeitszeit", Rate, "Stunden", {"Tagesarbeitszeit"}},
    PlanFact{"Arbeitszeit und Urlaub", "Überstundenzuschlag", Rate, "%", {"DurchUeberstundenzuschlag"}},
    PlanFact{"Arbeitszeit und Urlaub", "Urlaubstage", Days, "Tage", {"Urlaubstage"}},
    PlanFact{"Arbeitszeit und Urlaub", "Krankheitstage", Days, "Tage", {"Krankheitstage"}},
    PlanFact{"Arbeitszeit und Urlaub", "Urlaubsgeld", Rate, "%", {"VorgabeUrlaubsgeld"}},
    PlanFact{"Arbeitszeit und Urlaub", "Weihnachtsgeld", Rate, "%", {"VorgabeWeihnachtsgeld"}},
    PlanFact{"Arbeitszeit und Urlaub", "Vermögenswirksame Leistungen", Amount, "FnrWaehrung", {"VWL"}},
};
constexpr std::array kWorkingDays{
    PlanColumn{"Jahr", "FuerJahr", Whole, "Summe"},
    PlanColumn{"Monat", "#", MonthName},
    PlanColumn{"Arbeitstage", "Arbeitstage##", Whole, "sum", {}, 12},
};
constexpr std::array kHolidays{
    PlanColumn{"Jahr", "FuerJahr", Whole},
    PlanColumn{"Datum", "FDatum", Date},
    PlanColumn{"Feiertag", "Feiertag", Text, {}, {}, 32},
};
constexpr std::array kFirma{
    PlanTable{"Firmendaten", Rows::Facts, kYearlyValue, kFirmaFacts},
    PlanTable{"Arbeitstage", Rows::SectionMonths, kWorkingDays},
    PlanTable{"Feiertage", Rows::Records, kHolidays},
};

constexpr std::string_view kDeviationOfYear = "=JWIst-JWSoll";
constexpr std::string_view kPercentOfYear = "=(JWIst-JWSoll)/abs(JWSoll)*100";
constexpr std::string_view kDeviationOfMonth = "=MonatIst-MonatSoll";
constexpr std::array kAccounts{
    PlanColumn{"Geschäftsjahr", "FJahr", Whole, "Summe", {}, 14},
    PlanColumn{"Konto von", "VKonto", Whole},
    PlanColumn{"Konto bis", "EKonto", Whole},
    PlanColumn{"Bezeichnung", "Bezeichnung", Text, {}, {}, 40},
    PlanColumn{"Art", "KtoBetrArt", Text, {}, {}, 10, "Aufwand|Ertrag"},
    PlanColumn{"{} Soll", "MonatSoll", Amount, "sum", "MonatText"},
    PlanColumn{"{} Ist", "MonatIst", Amount, "sum", "MonatText"},
    PlanColumn{"{} Abweichung", kDeviationOfMonth, AmountDeviation, kDeviationOfMonth, "MonatText"},
    PlanColumn{"Jahr Soll", "JWSoll", Amount, "sum"},
    PlanColumn{"Jahr Ist", "JWIst", Amount, "sum"},
    PlanColumn{"Jahr Abweichung", kDeviationOfYear, AmountDeviation, kDeviationOfYear},
    PlanColumn{"Jahr %", kPercentOfYear, PercentDeviation, kPercentOfYear},
};
constexpr std::array kAccountsTable{PlanTable{"Konten", Rows::Records, kAccounts}};

constexpr std::array kCostKinds{
    PlanColumn{"Jahr", "FuerJahr", Whole, "Summe"},
    PlanColumn{"Kostenart", "@label", Text, {}, {}, 32},
    PlanColumn{"je Jahr", "@1", Amount, "sum"},
    PlanColumn{"je Monat", "=@1/12", Amount, "=@1/12"},
    PlanColumn{"Anteil %", "@1/(DAfa+DWag+DSons+MMieteJahr+UPausch+ZDMZins)*100", Percent},
};
constexpr std::array kCosts{
    PlanFact{{}, "Abschreibungen", Amount, {}, {"DAfa"}},
    PlanFact{{}, "Miete", Amount, {}, {"MMieteJahr"}},
    PlanFact{{}, "Unternehmerlohn", Amount, {}, {"UPausch"}},
    PlanFact{{}, "Zinsen auf das Eigenkapital", Amount, {}, {"ZDMZins"}},
    PlanFact{{}, "Wagnisse", Amount, {}, {"DWag"}},
    PlanFact{{}, "Sonstige", Amount, {}, {"DSons"}},
};
constexpr std::array kCostBases{
    PlanFact{"Kalkulatorische Miete", "Fläche", Amount, "m²", {"QM"}},
    PlanFact{"Kalkulatorische Miete", "Preis je m² und Monat", Amount, "FnrWaehrung", {"QMPreis"}},
    PlanFact{"Kalkulatorische Miete", "Miete je Monat", Amount, "FnrWaehrung", {"MMieteMon"}},
    PlanFact{"Kalkulatorische Miete", "Miete je Jahr", Amount, "FnrWaehrung", {"MMieteJahr"}},
    PlanFact{"Kalkulatorische Zinsen", "Eigenkapital", Amount, "FnrWaehrung", {"ZEK"}},
    PlanFact{"Kalkulatorische Zinsen", "Zinssatz", Rate, "%", {"ZPZins"}},
    PlanFact{"Kalkulatorische Zinsen", "Zinsen je Jahr", Amount, "FnrWaehrung", {"ZDMZins"}},
    PlanFact{"Nachrichtlich", "Privatanteil", Amount, "FnrWaehrung", {"Priv"}},
};
constexpr std::array kKalkKo{
    PlanTable{"Kosten", Rows::Facts, kCostKinds, kCosts},
    PlanTable{"Grundlagen", Rows::Facts, kYearlyValue, kCostBases},
};

constexpr std::array kMaterialMonths{
    PlanColumn{"Jahr", "Fuerjahr", Whole, "Summe"},
    PlanColumn{"Monat", "#", MonthName},
    PlanColumn{"Soll Betrag", "SUMMatDM_##", Amount, "sum"},
    PlanColumn{"Soll %", "SUMMatpr_##", Percent},
    PlanColumn{"Ist Betrag", "IUMMatDM_##", Amount, "sum"},
    PlanColumn{"Ist %", "IUMMatpr_##", Percent},
    PlanColumn{"Abweichung Betrag", "=IUMMatDM_##-SUMMatDM_##", AmountDeviation, "=IUMMatDM_##-SUMMatDM_##"},
    PlanColumn{"Abweichung %-Punkte", "=IUMMatpr_##-SUMMatpr_##", PercentDeviation, {}, {}, 12},
};
constexpr std::array kMaterialYear{
    PlanColumn{"Jahr", "Fuerjahr", Whole},
    PlanColumn{"Größe", "@label", Text, {}, {}, 32},
    PlanColumn{"Soll", "@1", OfFact, {}, {}, 16},
    PlanColumn{"Ist", "@2", OfFact, {}, {}, 16},
    PlanColumn{"Einheit", "@unit", Text, {}, {}, 10},
};
constexpr std::array kMaterialFacts{
    PlanFact{{}, "Material", Amount, "FnrWaehrung", {"SUJMatDM", "IUJMatDM"}},
    PlanFact{{}, "Anteil am Verkaufspreis", Percent, "%", {"SMatVKPr", "IMatVKPr"}},
};
constexpr std::array kMatUeber{
    PlanTable{"Monatswerte", Rows::Months, kMaterialMonths},
    PlanTable{"Jahreswerte", Rows::Facts, kMaterialYear, kMaterialFacts},
};

// Reports whose figures the host hands over whole.

constexpr std::array kBalance{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Bereich", "@group", Text, {}, {}, 26},
    PlanColumn{"Größe", "@label", Text, {}, {}, 34},
    PlanColumn{"Wert", "@1", OfFact, {}, {}, 16},
    PlanColumn{"Einheit", "@unit", Text, {}, {}, 10},
};
constexpr std::array kBilanzFacts{
    PlanFact{"Bilanz", "Anlagevermögen", Amount, "FnrWaehrung", {"Anlage"}},
    PlanFact{"Bilanz", "Lagerbestand", Amount, "FnrWaehrung", {"Lager"}},
    PlanFact{"Bilanz", "Flüssige Mittel", Amount, "FnrWaehrung", {"Cash"}},
    PlanFact{"Bilanz", "Eigenkapital", Amount, "FnrWaehrung", {"EK"}},
    PlanFact{"Bilanz", "Fremdkapital", Amount, "FnrWaehrung", {"FK"}},
    PlanFact{"Bilanz", "davon langfristig", Amount, "FnrWaehrung", {"LFK"}},
    PlanFact{"Bilanz", "davon Rückstellungen", Amount, "FnrWaehrung", {"Rueckst"}},
    PlanFact{"Bilanz", "Bilanzsumme", Amount, "FnrWaehrung", {"Bilanz"}},
    PlanFact{"Erfolg", "Umsatz", Amount, "FnrWaehrung", {"Umsatz"}},
    PlanFact{"Erfolg", "Material", Amount, "FnrWaehrung", {"Mat"}},
    PlanFact{"Erfolg", "Abschreibungen", Amount, "FnrWaehrung", {"Abschr"}},
    PlanFact{"Erfolg", "Zinsen auf Fremdkapital", Amount, "FnrWaehrung", {"ZinsFK"}},
    PlanFact{"Erfolg", "Gewinn", Amount, "FnrWaehrung", {"Gewinn"}},
    PlanFact{"Rentabilität", "Eigenkapitalrentabilität", Percent, "%", {"Gewinn/pos(EK)*100"}},
    PlanFact{"Rentabilität", "Umsatzrentabilität", Percent, "%", {"Gewinn/pos(Umsatz)*100"}},
    PlanFact{"Rentabilität", "Gesamtkapitalrentabilität", Percent, "%", {"(Gewinn+ZinsFK)/pos(Bilanz)*100"}},
    PlanFact{"Kapitalstruktur", "Eigenkapitalquote", Percent, "%", {"EK/pos(Bilanz)*100"}},
    PlanFact{"Kapitalstruktur", "Verschuldungsgrad", Percent, "%", {"FK/pos(EK)*100"}},
    PlanFact{"Finanzierung und Liquidität", "Cashflow", Amount, "FnrWaehrung", {"Gewinn+Abschr"}},
    PlanFact{"Finanzierung und Liquidität",
             "Cashflow in Prozent des Umsatzes",
             Percent,
             "%",
             {"(Gewinn+Abschr)/pos(Umsatz)*100"}},
    PlanFact{"Finanzierung und Liquidität", "Anlagendeckung I", Percent, "%", {"EK/pos(Anlage)*100"}},
    PlanFact{"Finanzierung und Liquidität", "Anlagendeckung II", Percent, "%", {"(EK+LFK)/pos(Anlage)*100"}},
    PlanFact{"Finanzierung und Liquidität", "Liquidität 1. Grades", Percent, "%", {"Cash/pos(FK-LFK)*100"}},
    PlanFact{"Material und Lager", "Materialquote", Percent, "%", {"Mat/pos(Umsatz)*100"}},
    PlanFact{"Material und Lager", "Lagerumschlag", Days, "mal", {"Mat/pos(Lager)"}},
    PlanFact{"Material und Lager", "Lagerdauer", Days, "Tage", {"360*Lager/pos(Mat)"}},
};
constexpr std::array kBilanz{PlanTable{"Bilanzkennzahlen", Rows::Facts, kBalance, kBilanzFacts}};

constexpr std::array kPerEmployee{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Bezeichnung", "Text", Text, {}, {}, 30},
    PlanColumn{"Soll je Mitarbeiter alle", "SAMaDM", Amount},
    PlanColumn{"Soll je Mitarbeiter produktive", "SPMaDM", Amount},
    PlanColumn{"Soll je Mitarbeiter unproduktive", "SUMaDM", Amount},
    PlanColumn{"Ist je Mitarbeiter alle", "IAMaDM", Amount},
    PlanColumn{"Ist je Mitarbeiter produktive", "IPMaDM", Amount},
    PlanColumn{"Ist je Mitarbeiter unproduktive", "IUMaDM", Amount},
    PlanColumn{"Abweichung alle", "DAMaDM", AmountDeviation},
    PlanColumn{"Abweichung produktive", "DPMaDM", AmountDeviation},
    PlanColumn{"Abweichung unproduktive", "DUMaDM", AmountDeviation},
};
constexpr std::array kBsEMa{PlanTable{"Betriebsübersicht", Rows::Records, kPerEmployee}};

constexpr std::array kOverview{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Bezeichnung", "Text", Text, {}, {}, 30},
    PlanColumn{"Soll Betrag", "SDM", Amount},
    PlanColumn{"Soll %", "SPR", Percent},
    PlanColumn{"Ist Betrag", "IDM", Amount},
    PlanColumn{"Ist %", "IPR", Percent},
    PlanColumn{"Abweichung Betrag", "DDM", AmountDeviation},
    PlanColumn{"Abweichung %", "DPR", PercentDeviation, {}, {}, 12},
};
constexpr std::array kBsE{PlanTable{"Betriebsübersicht", Rows::Records, kOverview}};

constexpr std::array kCalculationBases{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Größe", "@label", Text, {}, {}, 32},
    PlanColumn{"Einheit", "@unit", Text, {}, {}, 10},
    PlanColumn{"Soll", "@1", Amount},
    PlanColumn{"Ist", "@2", Amount},
    PlanColumn{"Abweichung", "=@2-@1", AmountDeviation},
};
constexpr std::array kCalculationFacts{
    PlanFact{{}, "Materialeinsatz", Amount, "FnrWaehrung", {"SMateinsatz", "IMateinsatz"}},
    PlanFact{{}, "Berechenbare Stunden", Amount, "Std", {"SBerStd", "IBerStd"}},
    PlanFact{{}, "Gewinn auf Material", Amount, "FnrWaehrung", {"SGewMat", "IGewMat"}},
    PlanFact{{}, "Material je Stunde/Minute", Amount, "FnrWaehrung", {"SMatSt", "IMatSt"}},
    PlanFact{{}, "Materialzuschlag", Amount, "%", {"SMatZu", "IMatZu"}},
    PlanFact{{}, "Gewinn auf Material je Stunde/Minute", Amount, "FnrWaehrung", {"SGewMatStd", "IGewMatStd"}},
};
constexpr std::array kCoverage{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Kosten, nach Stufen", "Text", Text, {}, {}, 30},
    PlanColumn{"Soll Deckungsbeitrag %", "SDBPr", Percent, {}, {}, 18},
    PlanColumn{"Soll Deckungsbeitrag", "SDB", Amount, {}, {}, 18},
    PlanColumn{"Soll Verrechnung %", "SVerPr", Percent, {}, {}, 18},
    PlanColumn{"Soll Verrechnungssatz", "SVer", Amount, {}, {}, 18},
    PlanColumn{"Ist Deckungsbeitrag %", "IDBPr", Percent, {}, {}, 18},
    PlanColumn{"Ist Deckungsbeitrag", "IDB", Amount, {}, {}, 18},
    PlanColumn{"Ist Verrechnung %", "IVerPr", Percent, {}, {}, 18},
    PlanColumn{"Ist Verrechnungssatz", "IVer", Amount, {}, {}, 18},
};
constexpr std::array kKalkW{
    PlanTable{"Grundlagen", Rows::Facts, kCalculationBases, kCalculationFacts},
    PlanTable{"Verrechnungssatz", Rows::Records, kCoverage},
};

constexpr std::array kRates{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Größe", "@label", Text, {}, {}, 32},
    PlanColumn{"bisher", "@1", Amount},
    PlanColumn{"neu", "@2", Amount},
    PlanColumn{"Abweichung", "=@2-@1", AmountDeviation},
};
constexpr std::array kRateFacts{
    PlanFact{{}, "Verrechnungssatz", Amount, {}, {"SVer", "IVer"}},
    PlanFact{{}, "Produktive Mitarbeiter", Amount, {}, {"UPMa", "WMa"}},
    PlanFact{{}, "Berechenbare Stunden", Amount, {}, {"UStd", "WStd"}},
};
constexpr std::array kAssumptions{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Größe", "@label", Text, {}, {}, 34},
    PlanColumn{"Einheit", "@unit", Text, {}, {}, 10},
    PlanColumn{"Soll", "@1", Amount},
    PlanColumn{"Erhöhung", "@2", AmountDeviation},
    PlanColumn{"Änderung %", "@3", AmountDeviation},
    PlanColumn{"Kennz.", "@4", Whole},
};
constexpr std::array kAssumptionFacts{
    PlanFact{{}, "Berechenbare Stunden", Amount, "Std", {"BerStd", "BerStdErh", "BerStdPr"}},
    PlanFact{{}, "Produktive Lohnkosten", Amount, "FnrWaehrung", {"ProdLK", "ProdLKErh", "ProdLKPr"}},
    PlanFact{{}, "Unproduktive Lohnkosten", Amount, "FnrWaehrung", {"UProdLK", "UProdLKErh", "UProdLKPr"}},
    PlanFact{{}, "Kalkulatorischer Unternehmerlohn", Amount, "FnrWaehrung", {"KULohn", "KULohnErh", "KULohnPr"}},
    PlanFact{{}, "Material", Amount, "FnrWaehrung", {"Mat", "MatErh", "MatPr", "MatKnz"}},
    PlanFact{{}, "Variable Gemeinkosten", Amount, "FnrWaehrung", {"VGem", "VGemErh", "VGemPr", "VGemKnz"}},
    PlanFact{{}, "Fixe Gemeinkosten", Amount, "FnrWaehrung", {"FGem", "FGemErh", "FGemPr", "FGemKnz"}},
    PlanFact{{}, "Aufwendungen", Amount, "FnrWaehrung", {"Aufw", "AufwErh", "AufwPr", "AufwKnz"}},
    PlanFact{{}, "Kalkulatorische Kosten", Amount, "FnrWaehrung", {"KKost", "KKostErh", "KKostPr", "KKostKnz"}},
};
constexpr std::array kEffects{
    PlanColumn{"Jahr", "Jahr", Whole},
    PlanColumn{"Größe", "Text", Text, {}, {}, 34},
    PlanColumn{"Einheit", "FWaehr", Text, {}, {}, 10},
    PlanColumn{"Soll", "SDM", Amount},
    PlanColumn{"Plan", "PDM", Amount},
    PlanColumn{"Abweichung", "DDM", AmountDeviation},
    PlanColumn{"Abw. %", "DPr", PercentDeviation},
};
constexpr std::array kWasWenn{
    PlanTable{"Auswirkung", Rows::Records, kEffects},
    PlanTable{"Annahmen", Rows::Facts, kAssumptions, kAssumptionFacts},
    PlanTable{"Verrechnungssatz", Rows::Facts, kRates, kRateFacts},
};

constexpr std::array kInvoices{
    PlanColumn{"Jahr", "Jahr", Whole, "Summe"},
    PlanColumn{"Monat", "Text", MonthName},
    PlanColumn{"Taglohn", "Taglohn", Amount, "sum"},
    PlanColumn{"Wartungsrechnungen", "WartRechnungen", Amount, "sum", {}, 20},
    PlanColumn{"Rechnungen", "Rechnungen", Amount, "sum"},
    PlanColumn{"Abgerechnete Abschläge", "AbgrAZ", Amount, "sum"},
    PlanColumn{"Offene Abschläge", "OffeneAZ", Amount, "sum"},
    PlanColumn{"Schlussrechnungen", "SchlussRechnung", Amount, "sum", {}, 18},
    PlanColumn{"Gutschriften", "Gutschrift", Amount, "sum"},
    PlanColumn{"Saldo", "Saldo", Amount, "sum"},
};
constexpr std::array kUmsatzHW{PlanTable{"Umsatz Handwerk", Rows::Records, kInvoices}};

struct NamedPlan {
    std::string_view listName;
    WorkbookPlan plan;
};

constexpr std::array kWorkbooks{
    NamedPlan{"Umsatz", kUmsatz},
    NamedPlan{"MitUeber", kMitUeber},
    NamedPlan{"Firma", kFirma},
    NamedPlan{"GemeinK", kAccountsTable},
    NamedPlan{"NeutralA", kAccountsTable},
    NamedPlan{"KalkKo", kKalkKo},
    NamedPlan{"MatUeber", kMatUeber},
    NamedPlan{"Bilanz", kBilanz},
    NamedPlan{"BsEMa", kBsEMa},
    NamedPlan{"BsEStd", kBsE},
    NamedPlan{"BsEGes", kBsE},
    NamedPlan{"KalkW", kKalkW},
    NamedPlan{"WasWenn", kWasWenn},
    NamedPlan{"UmsatzHW", kUmsatzHW},
};

} // namespace

WorkbookPlan workbookOf(const catalog::ReportEntry& report) {
    if (const auto personnel = personnelWorkbook(report.listName); !personnel.empty())
        return personnel;
    const auto* found = std::ranges::find(kWorkbooks, report.listName, &NamedPlan::listName);
    return found == kWorkbooks.end() ? WorkbookPlan() : found->plan;
}

} // namespace kvtdruck::cli
