// Calculation values, per hour or per minute.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zellen(1, {u"Jahr"}, 0),
    zellen(3, {u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
    zellen(15,
           {u"SMateinsatz", u"SBerStd", u"SGewMat", u"SMatSt", u"SMatZu", u"SGewMatStd", u"IMateinsatz", u"IBerStd",
            u"IGewMat", u"IMatSt", u"IMatZu", u"IGewMatStd"},
           0),
});

const Tabelle kFelder = verkette({
    textzelle(2, u"Text"),
    waehrung(u"FWaehr"),
    zellen(7, {u"SDBPr", u"SDB", u"SVerPr", u"SVer", u"IDBPr", u"IDB", u"IVerPr", u"IVer"}),
});

class clsDruck_Kalkwerte final : public Feldbericht {
  public:
    clsDruck_Kalkwerte(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Feldbericht(umgebung, std::move(auftrag), u"clsDruck_Kalkwerte", u"", kVariablen, kFelder) {}

  private:
    // The switch chooses the heading alone: the host supplies the figures in the unit.
    void WaehleTitel() override {
        setzeTitel(parray().ist(0, 27, 0.0) ? u"Kalkulationswerte je Stunde" : u"Kalkulationswerte je Minute");
    }
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_Kalkwerte(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_Kalkwerte>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
