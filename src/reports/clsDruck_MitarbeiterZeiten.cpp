// Working times: one line per employee and month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// "IBerSzdTag" and "SBerSzdTag" are spelled as this report's layouts refer to them.
const Tabelle kFelder = verkette({
    festwert(u"Seitenwechsel", u"1"),
    zahlen(ValueType::Single, {u"FJahr"}),
    errechnet(u"Name", vollerName),
    zahlen(ValueType::Double, {u"Nummer"}),
    zahlen(ValueType::Single, {u"Monat"}),
    zahlen(ValueType::Double, {u"IAdmPr"}),
    zahlen(ValueType::Single, {u"IAnwTage", u"IKrank", u"ISonstTage", u"IUrlT", u"IAusb"}),
    zahlen(ValueType::Double, {u"IProdStd", u"IUebStd", u"INBerStd", u"IBerStdJahr", u"IBerSzdTag"}),
    zahlen(ValueType::Double, {u"SAdmPr"}),
    zahlen(ValueType::Single, {u"SAnwTage", u"SKrank", u"SSonstTage", u"SUrlT", u"SAusb"}),
    zahlen(ValueType::Double, {u"SProdStd", u"SUebStd", u"SNBerStd", u"SBerStdJahr", u"SBerSzdTag"}),
});

class clsDruck_MitarbeiterZeiten final : public Mitarbeiterliste {
  public:
    clsDruck_MitarbeiterZeiten(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Mitarbeiterliste(umgebung, std::move(auftrag), u"clsDruck_MitarbeiterZeiten", u"Mitarbeiter-Zeiten",
                           kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_MitarbeiterZeiten(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_MitarbeiterZeiten>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
