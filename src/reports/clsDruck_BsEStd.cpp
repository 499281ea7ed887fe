// Operating overview per hour.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kBsEStdVariables = joined({
    companyNumber(),
    cells(3, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
});

const Table kBsEStdFields = joined({
    textCell(8, u"Text"),
    cells(9, {u"SDM", u"SPR", u"IDM", u"IPR", u"DDM", u"DPR"}),
    currency(u"FWaehr"),
});

class clsDruck_BsEStd final : public ArrayReport {
  public:
    clsDruck_BsEStd(const ReportEnvironment& environment, PrintRequest request)
        : ArrayReport(environment, std::move(request), u"clsDruck_BsEStd", u"Betriebsübersicht je Stunde",
                      kBsEStdVariables, kBsEStdFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_BsEStd(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_BsEStd>(environment, std::move(request));
}

} // namespace kvtdruck
