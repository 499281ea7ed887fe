// Personnel costs: one line per employee and month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kFelder = verkette({
    errechnet(u"Name", vollerName),
    festwert(u"Seitenwechsel", u"1"),
    zahlen(ValueType::Double, {u"Nummer"}),
    zahlen(ValueType::Single, {u"FJahr"}),
    zahlen(ValueType::Double, {u"IBrutto", u"SBrutto", u"IBruttoGes", u"SBruttoGes", u"IUrl", u"SUrl", u"IVWL",
                               u"SVWL", u"IWG", u"SWG", u"IAdmPr", u"SAdmPr"}),
    zahlen(ValueType::Single, {u"Monat"}),
});

class clsDruck_MitarbeiterKosten final : public Mitarbeiterliste {
  public:
    clsDruck_MitarbeiterKosten(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Mitarbeiterliste(umgebung, std::move(auftrag), u"clsDruck_MitarbeiterKosten", u"Mitarbeiter-Kosten",
                           kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_MitarbeiterKosten(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_MitarbeiterKosten>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
