// Working times: one line per employee and month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// "IBerSzdTag" and "SBerSzdTag" are spelled as this report's layouts refer to them.
const Table kMitarbeiterZeitenFields = joined({
    fixedNumber(u"Seitenwechsel", u"1"),
    numbers(ValueType::Single, {u"FJahr"}),
    fullName(u"Name"),
    numbers(ValueType::Double, {u"Nummer"}),
    numbers(ValueType::Single, {u"Monat"}),
    numbers(ValueType::Double, {u"IAdmPr"}),
    numbers(ValueType::Single, {u"IAnwTage", u"IKrank", u"ISonstTage", u"IUrlT", u"IAusb"}),
    numbers(ValueType::Double, {u"IProdStd", u"IUebStd", u"INBerStd", u"IBerStdJahr", u"IBerSzdTag"}),
    numbers(ValueType::Double, {u"SAdmPr"}),
    numbers(ValueType::Single, {u"SAnwTage", u"SKrank", u"SSonstTage", u"SUrlT", u"SAusb"}),
    numbers(ValueType::Double, {u"SProdStd", u"SUebStd", u"SNBerStd", u"SBerStdJahr", u"SBerSzdTag"}),
});

class clsDruck_MitarbeiterZeiten final : public EmployeeList {
  public:
    clsDruck_MitarbeiterZeiten(const ReportEnvironment& environment, PrintRequest request)
        : EmployeeList(environment, std::move(request), u"clsDruck_MitarbeiterZeiten", u"Mitarbeiter-Zeiten",
                       kMitarbeiterZeitenFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_MitarbeiterZeiten(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_MitarbeiterZeiten>(environment, std::move(request));
}

} // namespace kvtdruck
