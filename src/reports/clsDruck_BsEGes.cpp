// Operating overview in total. Row 0 carries the hours, and is printed as the first line, too.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zellen(3, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
    zellen(9, {u"SStd"}, 0),
    zellen(11, {u"IStd"}, 0),
    zellen(13, {u"DStd", u"DStdPr"}, 0),
});

const Tabelle kFelder = verkette({
    waehrung(u"FWaehr"),
    textzelle(8, u"Text"),
    zellen(9, {u"SDM", u"SPR", u"IDM", u"IPR", u"DDM", u"DPR"}),
});

class clsDruck_BsEGes final : public Feldbericht {
  public:
    clsDruck_BsEGes(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Feldbericht(umgebung, std::move(auftrag), u"clsDruck_BsEGes", u"Betriebsübersicht Gesamt", kVariablen,
                      kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_BsEGes(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_BsEGes>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
