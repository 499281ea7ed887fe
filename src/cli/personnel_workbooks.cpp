#include "cli/personnel_workbooks.h"

#include <algorithm>
#include <array>

namespace kvtdruck::cli {
namespace {

using druckwerk::PlanColumn;
using druckwerk::PlanFact;
using druckwerk::PlanTable;
using druckwerk::WorkbookPlan;
using enum druckwerk::CellFormat;
using Rows = PlanTable::Rows;

constexpr std::array kCosts{
    PlanColumn{"Geschäftsjahr", "FJahr", Whole, "Summe", {}, 14},
    PlanColumn{"Nr.", "Nummer", Whole},
    PlanColumn{"Name", "Name", Text, {}, {}, 26},
    PlanColumn{"Monat", "Monat", MonthName},
    PlanColumn{"Bruttolohn Soll", "SBrutto", Amount, "sum", {}, 12},
    PlanColumn{"Bruttolohn Ist", "IBrutto", Amount, "sum", {}, 12},
    PlanColumn{"Brutto kumuliert Soll", "SBruttoGes", Amount, {}, {}, 12},
    PlanColumn{"Brutto kumuliert Ist", "IBruttoGes", Amount, {}, {}, 12},
    PlanColumn{"Urlaubsgeld Soll", "SUrl", Amount, "sum", {}, 12},
    PlanColumn{"Urlaubsgeld Ist", "IUrl", Amount, "sum", {}, 12},
    PlanColumn{"Vermögenswirksame L. Soll", "SVWL", Amount, "sum", {}, 12},
    PlanColumn{"Vermögenswirksame L. Ist", "IVWL", Amount, "sum", {}, 12},
    PlanColumn{"Weihnachtsgeld Soll", "SWG", Amount, "sum", {}, 12},
    PlanColumn{"Weihnachtsgeld Ist", "IWG", Amount, "sum", {}, 12},
    PlanColumn{"Verwaltung % Soll", "SAdmPr", Percent, {}, {}, 12},
    PlanColumn{"Verwaltung % Ist", "IAdmPr", Percent, {}, {}, 12},
};
constexpr std::array kMaKost{PlanTable{"Personalkosten", Rows::Records, kCosts}};

constexpr std::array kTimes{
    PlanColumn{"Geschäftsjahr", "FJahr", Whole, "Summe", {}, 14},
    PlanColumn{"Nr.", "Nummer", Whole},
    PlanColumn{"Name", "Name", Text, {}, {}, 26},
    PlanColumn{"Monat", "Monat", MonthName},
    PlanColumn{"Anw. Tage Soll", "SAnwTage", Days, "sum", {}, 12},
    PlanColumn{"Anw. Tage Ist", "IAnwTage", Days, "sum", {}, 12},
    PlanColumn{"Krank Tage Soll", "SKrank", Days, "sum", {}, 12},
    PlanColumn{"Krank Tage Ist", "IKrank", Days, "sum", {}, 12},
    PlanColumn{"Urlaub Tage Soll", "SUrlT", Days, "sum", {}, 12},
    PlanColumn{"Urlaub Tage Ist", "IUrlT", Days, "sum", {}, 12},
    PlanColumn{"Ausb. Tage Soll", "SAusb", Days, "sum", {}, 12},
    PlanColumn{"Ausb. Tage Ist", "IAusb", Days, "sum", {}, 12},
    PlanColumn{"Sonst. Tage Soll", "SSonstTage", Days, "sum", {}, 12},
    PlanColumn{"Sonst. Tage Ist", "ISonstTage", Days, "sum", {}, 12},
    PlanColumn{"Produktiv Std Soll", "SProdStd", Amount, "sum", {}, 12},
    PlanColumn{"Produktiv Std Ist", "IProdStd", Amount, "sum", {}, 12},
    PlanColumn{"Überstunden Soll", "SUebStd", Amount, "sum", {}, 12},
    PlanColumn{"Überstunden Ist", "IUebStd", Amount, "sum", {}, 12},
    PlanColumn{"Nicht ber. Std Soll", "SNBerStd", Amount, "sum", {}, 12},
    PlanColumn{"Nicht ber. Std Ist", "INBerStd", Amount, "sum", {}, 12},
    PlanColumn{"Berechenbar Std Soll", "SBerStdJahr", Amount, "sum", {}, 12},
    PlanColumn{"Berechenbar Std Ist", "IBerStdJahr", Amount, "sum", {}, 12},
    PlanColumn{"Std je Tag Soll", "SBerSzdTag", Rate, "=SBerStdJahr/SAnwTage", {}, 12},
    PlanColumn{"Std je Tag Ist", "IBerSzdTag", Rate, "=IBerStdJahr/IAnwTage", {}, 12},
    PlanColumn{"Verwaltung % Soll", "SAdmPr", Percent, {}, {}, 12},
    PlanColumn{"Verwaltung % Ist", "IAdmPr", Percent, {}, {}, 12},
};
constexpr std::array kMaZeit{PlanTable{"Arbeitszeiten", Rows::Records, kTimes}};

constexpr std::array kMonthlyCosts{
    PlanColumn{"Jahr", "Fuerjahr", Whole, "Summe"},
    PlanColumn{"Nr.", "Nummer", Whole},
    PlanColumn{"Name", "Name"},
    PlanColumn{"Vorname", "Vorname"},
    PlanColumn{"Monat", "Monat", MonthName},
    PlanColumn{"Brutto Soll", "SBrutto", Amount, "sum", {}, 12},
    PlanColumn{"Brutto Ist", "IBrutto", Amount, "sum", {}, 12},
    PlanColumn{"Urlaubsgeld Soll", "SUrl", Amount, "sum", {}, 12},
    PlanColumn{"Urlaubsgeld Ist", "IUrl", Amount, "sum", {}, 12},
    PlanColumn{"VWL Soll", "SVWL", Amount, "sum", {}, 12},
    PlanColumn{"VWL Ist", "IVWL", Amount, "sum", {}, 12},
    PlanColumn{"Weihn.-geld Soll", "SWG", Amount, "sum", {}, 12},
    PlanColumn{"Weihn.-geld Ist", "IWG", Amount, "sum", {}, 12},
    PlanColumn{"Sonstige Soll", "SSonst", Amount, "sum", {}, 12},
    PlanColumn{"Sonstige Ist", "ISONST", Amount, "sum", {}, 12},
    PlanColumn{"Brutto kumuliert Soll", "SBruttoGes", Amount, {}, {}, 12},
    PlanColumn{"Brutto kumuliert Ist", "IBruttoGes", Amount, {}, {}, 12},
    PlanColumn{"Rentenvers. Soll", "SRV", Amount, "sum", {}, 12},
    PlanColumn{"Rentenvers. Ist", "IRV", Amount, "sum", {}, 12},
    PlanColumn{"Krankenvers. Soll", "SKV", Amount, "sum", {}, 12},
    PlanColumn{"Krankenvers. Ist", "IKV", Amount, "sum", {}, 12},
    PlanColumn{"Arb.lo.-vers. Soll", "SAV", Amount, "sum", {}, 12},
    PlanColumn{"Arb.lo.-vers. Ist", "IAV", Amount, "sum", {}, 12},
    PlanColumn{"Pflegevers. Soll", "SPflege", Amount, "sum", {}, 12},
    PlanColumn{"Pflegevers. Ist", "IPflege", Amount, "sum", {}, 12},
    PlanColumn{"Umlage Soll", "SErst", Amount, "sum", {}, 12},
    PlanColumn{"Umlage Ist", "IErst", Amount, "sum", {}, 12},
    PlanColumn{"Rückstellung Soll", "SRueck", Amount, "sum", {}, 12},
    PlanColumn{"Rückstellung Ist", "IRueck", Amount, "sum", {}, 12},
};

constexpr std::array kMonthlyTimes{
    PlanColumn{"Jahr", "Fuerjahr", Whole, "Summe"},
    PlanColumn{"Nr.", "Nummer", Whole},
    PlanColumn{"Name", "Name"},
    PlanColumn{"Vorname", "Vorname"},
    PlanColumn{"Monat", "Monat", MonthName},
    PlanColumn{"Arbeitstage Soll", "SArbtage", Days, "sum", {}, 12},
    PlanColumn{"Arbeitstage Ist", "IArbtage", Days, "sum", {}, 12},
    PlanColumn{"Urlaub Tage Soll", "SUrlT", Days, "sum", {}, 12},
    PlanColumn{"Urlaub Tage Ist", "IUrlT", Days, "sum", {}, 12},
    PlanColumn{"Krank Tage Soll", "SKrank", Days, "sum", {}, 12},
    PlanColumn{"Krank Tage Ist", "IKrank", Days, "sum", {}, 12},
    PlanColumn{"Ausb. Tage Soll", "SAusb", Days, "sum", {}, 12},
    PlanColumn{"Ausb. Tage Ist", "IAusb", Days, "sum", {}, 12},
    PlanColumn{"Sonst. Tage Soll", "SSonstTage", Days, "sum", {}, 12},
    PlanColumn{"Sonst. Tage Ist", "ISonstTage", Days, "sum", {}, 12},
    PlanColumn{"Anw. Tage Soll", "SAnwTage", Days, "sum", {}, 12},
    PlanColumn{"Anw. Tage Ist", "IAnwTage", Days, "sum", {}, 12},
    PlanColumn{"Anw. Std Soll", "SAnwStd", Amount, "sum", {}, 12},
    PlanColumn{"Anw. Std Ist", "IAnwStd", Amount, "sum", {}, 12},
    PlanColumn{"Verw. % Soll", "SAdmPr", Percent, {}, {}, 12},
    PlanColumn{"Verw. % Ist", "IAdmPr", Percent, {}, {}, 12},
    PlanColumn{"Verw. Std Soll", "SAdmStd", Amount, "sum", {}, 12},
    PlanColumn{"Verw. Std Ist", "IAdmStd", Amount, "sum", {}, 12},
    PlanColumn{"Prod. Std Soll", "SProdStd", Amount, "sum", {}, 12},
    PlanColumn{"Prod. Std Ist", "IProdStd", Amount, "sum", {}, 12},
    PlanColumn{"Überstd. Soll", "SUebStd", Amount, "sum", {}, 12},
    PlanColumn{"Überstd. Ist", "IUebStd", Amount, "sum", {}, 12},
    PlanColumn{"Prod. m. Übstd. Soll", "SProdAnwJahr", Amount, "sum", {}, 12},
    PlanColumn{"Prod. m. Übstd. Ist", "IProdAnwJahr", Amount, "sum", {}, 12},
    PlanColumn{"n. ber. Std Soll", "SNBerStd", Amount, "sum", {}, 12},
    PlanColumn{"n. ber. Std Ist", "INBerStd", Amount, "sum", {}, 12},
    PlanColumn{"Ber. Std Soll", "SBerStdJahr", Amount, "sum", {}, 12},
    PlanColumn{"Ber. Std Ist", "IBerStdJahr", Amount, "sum", {}, 12},
    PlanColumn{"Std je Tag Soll", "SBerStdTag", Rate, "=SBerStdJahr/SAnwTage", {}, 12},
    PlanColumn{"Std je Tag Ist", "IBerStdTag", Rate, "=IBerStdJahr/IAnwTage", {}, 12},
};

// What the sheets say of an employee and a year.

constexpr std::array kPersonal{
    PlanColumn{"Jahr", "Fuerjahr", Whole},
    PlanColumn{"Nr.", "Nummer", Whole},
    PlanColumn{"Name", "Name"},
    PlanColumn{"Vorname", "Vorname"},
    PlanColumn{"Bereich", "@group", Text, {}, {}, 16},
    PlanColumn{"Größe", "@label", Text, {}, {}, 26},
    PlanColumn{"Wert", "@1", OfFact, {}, {}, 26},
};
constexpr std::array kPersonalFacts{
    PlanFact{"Person", "Anrede", Text, {}, {"Anrede"}},
    PlanFact{"Person", "Geburtsdatum", Date, {}, {"GDat"}},
    PlanFact{"Person", "Familienstand", Text, {}, {"Stand"}},
    PlanFact{"Person", "Straße", Text, {}, {"Strasse"}},
    PlanFact{"Person", "PLZ", PostalCode, {}, {"Plz"}},
    PlanFact{"Person", "Ort", Text, {}, {"Ort"}},
    PlanFact{"Person", "Telefon", Text, {}, {"Tel1"}},
    PlanFact{"Person", "Telefon", Text, {}, {"Tel2"}},
    PlanFact{"Person", "Telefon", Text, {}, {"Tel3"}},
    PlanFact{"Person", "Telefax", Text, {}, {"Fax"}},
    PlanFact{"Person", "E-Mail", Text, {}, {"EMail"}},
    PlanFact{"Person", "Internet", Text, {}, {"Homepage"}},
    PlanFact{"Beschäftigung", "Art", Text, {}, {"Art"}},
    PlanFact{"Beschäftigung", "Eintritt", Date, {}, {"EDat"}},
    PlanFact{"Beschäftigung", "Austritt", Date, {}, {"ADat"}},
    PlanFact{"Beschäftigung", "Anteil Vollzeitstelle", Rate, {}, {"AnzahlMa"}},
    PlanFact{"Beschäftigung", "Kostensatz Handwerk", Amount, {}, {"KostenSatzHW"}},
    PlanFact{"Entgelt", "Stundenlohn", Amount, {}, {"StdLohn"}},
    PlanFact{"Entgelt", "Gehalt je Monat", Amount, {}, {"Gehalt"}},
    PlanFact{"Entgelt", "Erhöhung ab", MonthName, {}, {"ErhAbMon"}},
    PlanFact{"Entgelt", "Erhöhung, Betrag", Amount, {}, {"ErhAbMonDM"}},
    PlanFact{"Entgelt", "Erhöhung in Prozent", Rate, {}, {"ErhAbMonPr"}},
    PlanFact{"Entgelt", "Prämie ab", MonthName, {}, {"PraeAbMon"}},
    PlanFact{"Entgelt", "Prämie, Betrag", Amount, {}, {"PraeAbMonDM"}},
    PlanFact{"Entgelt", "Prämie in Prozent", Rate, {}, {"PraeAbMonPr"}},
    PlanFact{"Entgelt", "Zuschlag produktiv", Rate, {}, {"ProdZuPr"}},
    PlanFact{"Arbeitszeit", "Stunden je Tag", Amount, {}, {"TAZeit"}},
    PlanFact{"Arbeitszeit", "Änderung ab", MonthName, {}, {"TAZeitAbMon"}},
    PlanFact{"Arbeitszeit", "Stunden je Tag danach", Amount, {}, {"TAZeitAbStd"}},
    PlanFact{"Arbeitszeit", "Überstunden", Amount, {}, {"RUebStd"}},
    PlanFact{"Arbeitszeit", "Überstundenzuschlag", Rate, {}, {"RUebPr"}},
    PlanFact{"Arbeitszeit", "Nicht berechenbare Std", Amount, {}, {"NBerStd"}},
    PlanFact{"Arbeitszeit", "Nicht berechenbar", Rate, {}, {"NBerPr"}},
};
constexpr std::array kCalculation{
    PlanColumn{"Jahr", "Fuerjahr", Whole},
    PlanColumn{"Nr.", "Nummer", Whole},
    PlanColumn{"Name", "Name"},
    PlanColumn{"Vorname", "Vorname"},
    PlanColumn{"Kalkulation", "@label", Text, {}, {}, 26},
    PlanColumn{"Soll", "@1", OfFact, {}, {}, 14},
    PlanColumn{"Ist", "@2", OfFact, {}, {}, 14},
};
constexpr std::array kCalculationFacts{
    PlanFact{"", "Berechenbare Std", Amount, {}, {"SAnwBerStd", "IAnwBerStd"}},
    PlanFact{"", "Bezahlte Std", Amount, {}, {"SBezStd", "IBezStd"}},
    PlanFact{"", "davon produktiv", Amount, {}, {"SBezStdProd", "IBezStdProd"}},
    PlanFact{"", "Produktive Std", Amount, {}, {"SGesProdStd", "IGesProdStd"}},
    PlanFact{"", "Prod. Lohnk.", Amount, {}, {"SProdLk", "IProdLk"}},
    PlanFact{"", "Unprod. Lohnk.", Amount, {}, {"SUnProdLk", "IUnProdLk"}},
    PlanFact{"", "Verrechnungssatz", Amount, {}, {"SStdVerDM", "IStdVerDM"}},
    PlanFact{"", "Kosten je ber. Std", Amount, {}, {"", "IPStdVerDM"}},
    PlanFact{"", "Kalk. U.-Lohn", Amount, {}, {"SKalkULohn", "IKalkULohn"}},
    PlanFact{"", "Produktiv in %", Percent, {}, {"SAnzahlMaPr", "IAnzahlMaPr"}},
};
constexpr std::array kMaStKost{
    PlanTable{"Monate", Rows::Records, kMonthlyCosts, {}, true},
    PlanTable{"Stammdaten", Rows::Facts, kPersonal, kPersonalFacts},
    PlanTable{"Kalkulation", Rows::Facts, kCalculation, kCalculationFacts},
};
constexpr std::array kMaStZeit{
    PlanTable{"Monate", Rows::Records, kMonthlyTimes, {}, true},
    PlanTable{"Stammdaten", Rows::Facts, kPersonal, kPersonalFacts},
    PlanTable{"Kalkulation", Rows::Facts, kCalculation, kCalculationFacts},
};

} // namespace

WorkbookPlan personnelWorkbook(std::string_view listName) {
    return listName == "MaKost"     ? WorkbookPlan(kMaKost)
           : listName == "MaZeit"   ? WorkbookPlan(kMaZeit)
           : listName == "MaStKost" ? WorkbookPlan(kMaStKost)
           : listName == "MaStZeit" ? WorkbookPlan(kMaStZeit)
                                    : WorkbookPlan();
}

} // namespace kvtdruck::cli
