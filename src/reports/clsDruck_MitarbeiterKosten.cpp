// Personnel costs: one line per employee and month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kMitarbeiterKostenFields = joined({
    fullName(u"Name"),
    fixedNumber(u"Seitenwechsel", u"1"),
    numbers(ValueType::Double, {u"Nummer"}),
    numbers(ValueType::Single, {u"FJahr"}),
    numbers(ValueType::Double, {u"IBrutto", u"SBrutto", u"IBruttoGes", u"SBruttoGes", u"IUrl", u"SUrl", u"IVWL",
                                u"SVWL", u"IWG", u"SWG", u"IAdmPr", u"SAdmPr"}),
    numbers(ValueType::Single, {u"Monat"}),
});

class clsDruck_MitarbeiterKosten final : public EmployeeList {
  public:
    clsDruck_MitarbeiterKosten(const ReportEnvironment& environment, PrintRequest request)
        : EmployeeList(environment, std::move(request), u"clsDruck_MitarbeiterKosten", u"Mitarbeiter-Kosten",
                       kMitarbeiterKostenFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_MitarbeiterKosten(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_MitarbeiterKosten>(environment, std::move(request));
}

} // namespace kvtdruck
