// Operating overview per employee.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kBsEMaVariables = joined({
    companyNumber(),
    cells(3, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
});

const Table kBsEMaFields = joined({
    currency(u"FWaehr"),
    textCell(8, u"Text"),
    cells(9, {u"SAMaDM", u"SPMaDM", u"SUMaDM", u"IAMaDM", u"IPMaDM", u"IUMaDM", u"DAMaDM", u"DPMaDM", u"DUMaDM"}),
});

class clsDruck_BsEMa final : public ArrayReport {
  public:
    clsDruck_BsEMa(const ReportEnvironment& environment, PrintRequest request)
        : ArrayReport(environment, std::move(request), u"clsDruck_BsEMa", u"Betriebsübersicht Mitarbeiter",
                      kBsEMaVariables, kBsEMaFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_BsEMa(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_BsEMa>(environment, std::move(request));
}

} // namespace kvtdruck
