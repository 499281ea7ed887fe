// Master sheet of an employee with the costs of each month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// "ISONST" and "SSonst" are spelled as the layouts refer to them.
const Tabelle kFelder = verkette({
    zahlen(ValueType::Double,
           {u"IAV", u"IBrutto", u"IBruttoGes", u"IVWL", u"IWG", u"IUrl", u"IRV", u"IKV", u"IPflege", u"IErst"}),
    zahlen(ValueType::Single, {u"ISONST"}),
    zahlen(ValueType::Double, {u"IRueck", u"SAV", u"SBrutto", u"SBruttoGes", u"SVWL", u"SWG", u"SUrl", u"SRV",
                               u"SKV", u"SPflege", u"SErst", u"SSonst", u"SRueck"}),
    zahlen(ValueType::Single, {u"Monat"}),
});

/// Error reports name the class by a longer name than its own; the host's error log depends on it.
class clsDruck_MitarbeiterStKosten final : public Stammblatt {
  public:
    clsDruck_MitarbeiterStKosten(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Stammblatt(umgebung, std::move(auftrag), u"clsDruck_MitarbeiterStammKosten",
                     u"Mitarbeiter-Stammblatt-Kosten", kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_MitarbeiterStKosten(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_MitarbeiterStKosten>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
