// Operating overview in total. Row 0 carries the hours, and is printed as the first line, too.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kBsEGesVariables = joined({
    companyNumber(),
    cells(3, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
    cells(9, {u"SStd"}, 0),
    cells(11, {u"IStd"}, 0),
    cells(13, {u"DStd", u"DStdPr"}, 0),
});

const Table kBsEGesFields = joined({
    currency(u"FWaehr"),
    textCell(8, u"Text"),
    cells(9, {u"SDM", u"SPR", u"IDM", u"IPR", u"DDM", u"DPR"}),
});

class clsDruck_BsEGes final : public ArrayReport {
  public:
    clsDruck_BsEGes(const ReportEnvironment& environment, PrintRequest request)
        : ArrayReport(environment, std::move(request), u"clsDruck_BsEGes", u"Betriebsübersicht Gesamt",
                      kBsEGesVariables, kBsEGesFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_BsEGes(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_BsEGes>(environment, std::move(request));
}

} // namespace kvtdruck
