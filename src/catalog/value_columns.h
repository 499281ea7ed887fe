// The columns of the files of values, by the reports that they feed.
#pragma once

#include "catalog/report_catalog.h"

#include <algorithm>
#include <array>

namespace kvtdruck::catalog::columns {

using enum ValueColumn::Rows;

inline constexpr std::array kBilanz{
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

inline constexpr auto kBetriebKopf =
    joined(std::array{ValueColumn{3, "Jahr", First, "Jahr, vierstellig"}}, period(4),
           std::array{ValueColumn{8, "Text", Each, "Bezeichnung der Zeile, Text"}});

inline constexpr auto kBsEMa = joined(
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

inline constexpr auto kBsEStd =
    joined(kBetriebKopf, std::array{
                             ValueColumn{9, "SDM", Each, "Soll, Währung (bei BsEStd je berechenbarer Stunde)"},
                             ValueColumn{10, "SPR", Each, "Soll in Prozent des Umsatzes"},
                             ValueColumn{11, "IDM", Each, "Ist, Währung (bei BsEStd je berechenbarer Stunde)"},
                             ValueColumn{12, "IPR", Each, "Ist in Prozent des Umsatzes"},
                             ValueColumn{13, "DDM", Each, "Differenz Ist minus Soll, Währung"},
                             ValueColumn{14, "DPR", Each, "Differenz in Prozent des Solls"},
                         });

inline constexpr auto kKalkW = joined(
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

inline constexpr auto kWasWenn = joined(
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

inline constexpr std::array kUmsatzHW{
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

} // namespace kvtdruck::catalog::columns
