// Turnover per year with its twelve months, one year a page.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablenAllg = firmennummer();

const Tabelle kFelder = verkette({
    waehrung(u"Waehrung"),
    zahlen(ValueType::Double, {u"IUmsatzDM"}),
    monate(ValueType::Double, u"IUmsatzDM_"),
    zahlen(ValueType::Double, {u"sUmsatzDM"}),
    monate(ValueType::Double, u"sUmsatzDM_"),
});

class clsDruck_Umsatz final : public Leserbericht {
  public:
    clsDruck_Umsatz(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Leserbericht(umgebung, std::move(auftrag), u"clsDruck_Umsatz", u"Umsatz",
                       {clsZugUmsatz, kVariablenAllg, kFelder}) {}

  private:
    Lesemeldung lesemeldung() const override {
        return {u"Lese_Umsatz", u"Die Umsatzdaten konnten nicht gelesen werden"};
    }
    bool LeseDaten() override { return LeseJahre({auftrag().pFnr}); }

    // The general variables' result does not stop the report; hosts never saw it do so.
    bool DefiniereAlles() override {
        Definiere_Übergebe_Variablen_Allg();
        return Definiere_Übergebe_Variablen_Jahr(LeseJahr()) && Definiere_Übergebe_Felder();
    }

    bool DefiniereVorErsterSeite() override {
        Definiere_Übergebe_Variablen_Allg();
        return true;
    }

    // One record is one page, and a failing definition does not stop the others.
    bool DruckeSatz(bool erster) override {
        if (!erster)
            adapter().LlPrint();
        ZeigeFortschritt();
        Definiere_Übergebe_Variablen_Jahr(LeseJahr());
        Definiere_Übergebe_Felder();
        DruckeZeile();
        return true;
    }

    std::int16_t LeseJahr() { return toInteger(leser().wert(jahr_), locale()); }

    bool Definiere_Übergebe_Variablen_Allg() {
        return Prozedurrumpf(u"Definiere_Übergebe_Variablen_Allg", [this] {
            Definiere(kVariable, variablen(), satz());
            return true;
        });
    }

    bool Definiere_Übergebe_Variablen_Jahr(std::int16_t jahr) {
        return Prozedurrumpf(u"Definiere_Übergebe_Variablen_Jahr", [&] {
            Definiere(kVariable, u"Fuerjahr", decimal(jahr), kTypeNumeric);
            return true;
        });
    }

    Mitglied jahr_{clsZugUmsatz.getter(u"Fuerjahr"), ValueType::Single};
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_Umsatz(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_Umsatz>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
