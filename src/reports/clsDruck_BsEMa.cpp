// Operating overview per employee.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zellen(3, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
});

const Tabelle kFelder = verkette({
    waehrung(u"FWaehr"),
    textzelle(8, u"Text"),
    zellen(9, {u"SAMaDM", u"SPMaDM", u"SUMaDM", u"IAMaDM", u"IPMaDM", u"IUMaDM", u"DAMaDM", u"DPMaDM", u"DUMaDM"}),
});

class clsDruck_BsEMa final : public Feldbericht {
  public:
    clsDruck_BsEMa(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Feldbericht(umgebung, std::move(auftrag), u"clsDruck_BsEMa", u"Betriebsübersicht Mitarbeiter", kVariablen,
                      kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_BsEMa(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_BsEMa>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
