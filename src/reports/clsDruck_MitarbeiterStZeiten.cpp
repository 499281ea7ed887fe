// Master sheet of an employee with the working times of each month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// "SKrank" closes the target figures, "IKrank" stands behind "Monat"; the layouts are written for this order.
const Tabelle kFelder = verkette({
    zahlen(ValueType::Single, {u"SArbtage", u"SUrlT", u"SAusb", u"SSonstTage", u"SAnwTage"}),
    zahlen(ValueType::Double, {u"SAnwStd", u"SAdmPr", u"SAdmStd", u"SProdStd", u"SUebStd", u"SProdAnwJahr",
                               u"SNBerStd", u"SBerStdJahr", u"SBerStdTag"}),
    zahlen(ValueType::Single, {u"SKrank", u"IArbtage", u"IUrlT", u"IAusb", u"ISonstTage", u"IAnwTage"}),
    zahlen(ValueType::Double, {u"IAnwStd", u"IAdmPr", u"IAdmStd", u"IProdStd", u"IUebStd", u"IProdAnwJahr",
                               u"INBerStd", u"IBerStdJahr", u"IBerStdTag"}),
    zahlen(ValueType::Single, {u"Monat", u"IKrank"}),
});

class clsDruck_MitarbeiterStZeiten final : public Stammblatt {
  public:
    clsDruck_MitarbeiterStZeiten(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Stammblatt(umgebung, std::move(auftrag), u"clsDruck_MitarbeiterStZeiten",
                     u"Mitarbeiter-Stammblatt-Zeiten", kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_MitarbeiterStZeiten(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_MitarbeiterStZeiten>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
