// The list of the company's employees with their personal data.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// The report has no year of its own; its layouts are written for both texts.
constexpr std::int16_t kAlleJahre = 0;

const Tabelle kVariablen = firmennummer();

const Tabelle kFelder = verkette({
    texte({u"Anrede"}),
    datum({u"Austrittsdatum"}),
    texte({u"Art"}),
    datum({u"Eintrittsdatum"}),
    texte({u"Fax"}),
    datum({u"Geburtsdatum"}),
    texte({u"Land", u"Vorname", u"Name"}),
    zahlen(ValueType::Double, {u"Nummer"}),
    texte({u"Ort"}),
    zahlen(ValueType::Double, {u"Plz"}),
    texte({u"Stand", u"Strasse", u"Telefon1", u"Telefon2"}),
});

/// Error reports spell the class unlike its coclass; the host's error log depends on it.
class clsDRuck_MitarbeiterUebersicht final : public Leserbericht {
  public:
    clsDRuck_MitarbeiterUebersicht(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Leserbericht(umgebung, std::move(auftrag), u"clsDruck_MitarbeiterUebersicht", u"Mitarbeiter-Übersicht",
                       {clsZugMitarbeiter, kVariablen, kFelder}) {}

  private:
    Lesemeldung lesemeldung() const override {
        return {u"Lese_Mitarbeiter", u"Die Mitarbeiter konnten nicht gelesen werden."};
    }

    // Only True in the first cell allows the list to be read.
    bool LeseDaten() override {
        return parray().ist(0, 0, true) && leser().Lese(clsZugMitarbeiter.leseAlle, {auftrag().pFnr, kAlleJahre});
    }

    bool Definiere_Übergebe_Variablen() override { return Definiere_Übergebe_Variablen(kAlleJahre); }

    bool Definiere_Übergebe_Variablen(std::int16_t pFuerJahr) {
        return Prozedurrumpf(u"Definiere_Übergebe_Variablen", [&] {
            Definiere(kVariable, variablen(), satz());
            Definiere(kVariable, u"Fuerjahr", decimal(pFuerJahr), kTypeNumeric);
            Definiere(kVariable, u"UebMitte",
                      pFuerJahr == kAlleJahre ? u"Für alle Jahre" : u"Für das Jahr " + decimal(pFuerJahr),
                      kTypeText);
            return true;
        });
    }
};

} // namespace

std::unique_ptr<Bericht> neu_clsDRuck_MitarbeiterUebersicht(const Berichtsumgebung& umgebung,
                                                            Druckauftrag auftrag) {
    return std::make_unique<clsDRuck_MitarbeiterUebersicht>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
