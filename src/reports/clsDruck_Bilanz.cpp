// The balance-sheet figures of one year; the layout forms the ratios.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zellen(1,
           {u"Jahr", u"Gewinn", u"EK", u"Umsatz", u"ZinsFK", u"Bilanz", u"Abschr", u"Rueckst", u"FK", u"LFK",
            u"Anlage", u"Cash", u"Mat", u"Lager"},
           0),
});

/// The sheet has no table.
const Tabelle kFelder;

class clsDruck_Bilanz final : public Feldbericht {
  public:
    clsDruck_Bilanz(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Feldbericht(umgebung, std::move(auftrag), u"clsDruck_Bilanz", u"Bilanzkennzahlen", kVariablen, kFelder) {}

  private:
    bool DefiniereAlles() override { return Definiere_Übergebe_Variablen(); }

    bool DruckeSaetze() override {
        DruckeZeile();
        return true;
    }
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_Bilanz(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_Bilanz>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
