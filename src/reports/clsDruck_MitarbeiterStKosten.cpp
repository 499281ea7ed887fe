// Master sheet of an employee with the costs of each month.
#include "reports/employee_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// "ISONST" and "SSonst" are spelled as the layouts refer to them.
const Table kMitarbeiterStKostenFields = joined({
    numbers(ValueType::Double,
            {u"IAV", u"IBrutto", u"IBruttoGes", u"IVWL", u"IWG", u"IUrl", u"IRV", u"IKV", u"IPflege", u"IErst"}),
    numbers(ValueType::Single, {u"ISONST"}),
    numbers(ValueType::Double, {u"IRueck", u"SAV", u"SBrutto", u"SBruttoGes", u"SVWL", u"SWG", u"SUrl", u"SRV",
                                u"SKV", u"SPflege", u"SErst", u"SSonst", u"SRueck"}),
    numbers(ValueType::Single, {u"Monat"}),
});

/// Error reports name the class by a longer name than its own; the host's error log depends on it.
class clsDruck_MitarbeiterStKosten final : public MasterSheet {
  public:
    clsDruck_MitarbeiterStKosten(const ReportEnvironment& environment, PrintRequest request)
        : MasterSheet(environment, std::move(request), u"clsDruck_MitarbeiterStammKosten",
                      u"Mitarbeiter-Stammblatt-Kosten", kMitarbeiterStKostenFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_MitarbeiterStKosten(const ReportEnvironment& environment,
                                                         PrintRequest request) {
    return std::make_unique<clsDruck_MitarbeiterStKosten>(environment, std::move(request));
}

} // namespace kvtdruck
