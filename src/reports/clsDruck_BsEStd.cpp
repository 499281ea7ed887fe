// Operating overview per hour.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zellen(3, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
});

const Tabelle kFelder = verkette({
    textzelle(8, u"Text"),
    zellen(9, {u"SDM", u"SPR", u"IDM", u"IPR", u"DDM", u"DPR"}),
    waehrung(u"FWaehr"),
});

class clsDruck_BsEStd final : public Feldbericht {
  public:
    clsDruck_BsEStd(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Feldbericht(umgebung, std::move(auftrag), u"clsDruck_BsEStd", u"Betriebsübersicht je Stunde", kVariablen,
                      kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_BsEStd(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_BsEStd>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
