// Master sheet of an employee with the working times of each month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// "SKrank" closes the target figures, "IKrank" stands behind "Monat"; the layouts are written for this order.
const Table kMitarbeiterStZeitenFields = joined({
    numbers(ValueType::Single, {u"SArbtage", u"SUrlT", u"SAusb", u"SSonstTage", u"SAnwTage"}),
    numbers(ValueType::Double, {u"SAnwStd", u"SAdmPr", u"SAdmStd", u"SProdStd", u"SUebStd", u"SProdAnwJahr",
                                u"SNBerStd", u"SBerStdJahr", u"SBerStdTag"}),
    numbers(ValueType::Single, {u"SKrank", u"IArbtage", u"IUrlT", u"IAusb", u"ISonstTage", u"IAnwTage"}),
    numbers(ValueType::Double, {u"IAnwStd", u"IAdmPr", u"IAdmStd", u"IProdStd", u"IUebStd", u"IProdAnwJahr",
                                u"INBerStd", u"IBerStdJahr", u"IBerStdTag"}),
    numbers(ValueType::Single, {u"Monat", u"IKrank"}),
});

class clsDruck_MitarbeiterStZeiten final : public MasterSheet {
  public:
    clsDruck_MitarbeiterStZeiten(const ReportEnvironment& environment, PrintRequest request)
        : MasterSheet(environment, std::move(request), u"clsDruck_MitarbeiterStZeiten",
                      u"Mitarbeiter-Stammblatt-Zeiten", kMitarbeiterStZeitenFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_MitarbeiterStZeiten(const ReportEnvironment& environment,
                                                         PrintRequest request) {
    return std::make_unique<clsDruck_MitarbeiterStZeiten>(environment, std::move(request));
}

} // namespace kvtdruck
