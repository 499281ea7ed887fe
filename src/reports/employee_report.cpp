#include "reports/employee_report.h"

namespace kvtdruck {
namespace {

constexpr auto kSingle = ValueType::Single;
constexpr auto kDouble = ValueType::Double;

const Tabelle kListenvariablen = verkette({firmennummer(), zahlen(kSingle, {u"Fuerjahr"})});

/// Actual figures have "IPStdVerDM", target figures have no counterpart; the layouts are written so.
const Tabelle kStammvariablen = verkette({
    kListenvariablen,
    texte({u"Anrede"}),
    datumOderLeer({u"ADat"}),
    texte({u"Art"}),
    datumOderLeer({u"EDat"}),
    texte({u"Fax"}),
    datumOderLeer({u"GDat"}),
    texte({u"Vorname", u"Name"}),
    zahlen(kDouble, {u"Nummer"}),
    texte({u"Ort"}),
    zahlen(kDouble, {u"Plz"}),
    texte({u"Stand", u"Strasse", u"Tel1", u"Tel2"}),
    zahlen(kSingle, {u"ErhAbMon"}),
    zahlen(kDouble, {u"ErhAbMonDM",  u"ErhAbMonPr",  u"Gehalt",    u"IAnwBerStd", u"IAnwStd",     u"IBezStd",
                     u"IBezStdProd", u"IGesProdStd", u"IProdLk",   u"IPStdVerDM", u"IStdVerDM",   u"IUnProdLk",
                     u"IKalkULohn",  u"SAnwBerStd",  u"SAnwStd",   u"SBezStd",    u"SBezStdProd", u"SGesProdStd",
                     u"SProdLk",     u"SStdVerDM",   u"SUnProdLk", u"SKalkULohn"}),
    zahlen(kSingle, {u"AnzahlMa", u"PraeAbMon"}),
    zahlen(kDouble, {u"PraeAbMonDM", u"PraeAbMonPr", u"ProdZuPr"}),
    zahlen(kSingle, {u"TAZeit", u"TAZeitAbMon"}),
    zahlen(kDouble, {u"TAZeitAbStd", u"NBerPr", u"NBerStd"}),
    zahlen(kSingle, {u"RUebPr", u"RUebStd", u"SAnzahlMaPr", u"IAnzahlMaPr"}),
    zahlen(kDouble, {u"StdLohn"}),
    texte({u"Name3"}),
    zahlen(kDouble, {u"KostenSatzHW"}),
    texte({u"Tel3", u"EMail", u"Homepage", u"BezEMail", u"BezFax", u"BezHomepage", u"BezTel1", u"BezTel2",
           u"BezTel3"}),
});

} // namespace

// Reading
// -----------------------------------------------------------------------------------------------------------

Leserbericht::Lesemeldung Mitarbeiterbericht::lesemeldung() const {
    return {u"Lese_Mitarbeiter", u"Die Mitarbeiter konnten nicht gelesen werden."};
}

bool Mitarbeiterbericht::LeseDaten() {
    const auto monate = LeseMonatsbereich();
    parray().normalisiereBereich();
    const bool einzelne = parray().ist(0, 0, false);
    const auto untere = einzelne ? parray().single(0, 1) : 0.0f;
    const auto obere = einzelne ? parray().single(0, 2) : 0.0f;
    return leser().Lese(clsZugMitarbeiterMonate.leseVonBis,
                        {auftrag().pFnr, untere, obere, monate.erster, monate.letzter});
}

// Lists
// -------------------------------------------------------------------------------------------------------------

Mitarbeiterliste::Mitarbeiterliste(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse,
                                   StringView titel, const Tabelle& felder)
    : Mitarbeiterbericht(umgebung, std::move(auftrag), klasse, titel,
                         {clsZugMitarbeiterMonate, kListenvariablen, felder, {u"FJahr"}}) {}

Mitarbeiterbericht::Monate Mitarbeiterliste::LeseMonatsbereich() {
    if (!parray().ist(0, 3, false))
        return {kJahressumme, kJahressumme};
    return {parray().single(0, 4), parray().single(0, 5)};
}

String Mitarbeiterliste::Name() {
    const auto text = [this](Mitglied& getter) { return toText(leser().wert(getter), locale()); };
    const auto vorname = text(vorname_);
    const auto name = text(name_);
    if (trimmed(vorname).empty())
        return String(trimmed(name));
    return String(trimmed(vorname)) + u" " + String(trimmed(name));
}

String vollerName(Bericht& bericht) {
    return static_cast<Mitarbeiterliste&>(bericht).Name();
}

// Master sheets
// -----------------------------------------------------------------------------------------------------

Stammblatt::Stammblatt(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel,
                       const Tabelle& felder)
    : Mitarbeiterbericht(
          umgebung, std::move(auftrag), klasse, titel,
          {clsZugMitarbeiterMonate, kStammvariablen, felder, {u"FJahr", u"Nummer"}, Gruppenwechsel::NeuesBlatt}) {}

} // namespace kvtdruck
