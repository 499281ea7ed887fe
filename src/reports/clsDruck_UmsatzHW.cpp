// Turnover of a trade business by kind of invoice.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// The year stands in row 1, unlike in all other arrays.
const Table kUmsatzHWVariables = joined({
    companyNumber(),
    cells(0, {u"Jahr"}, 1),
});

const Table kUmsatzHWFields = joined({
    cells(1, {u"Taglohn", u"WartRechnungen", u"Rechnungen", u"AbgrAZ", u"OffeneAZ", u"SchlussRechnung",
              u"Gutschrift", u"Saldo"}),
    textCell(9, u"Text"),
});

/// Error reports spell the class without its underscore; the host's error log depends on it.
class clsDruck_UmsatzHW final : public ArrayReport {
  public:
    clsDruck_UmsatzHW(const ReportEnvironment& environment, PrintRequest request)
        : ArrayReport(environment, std::move(request), u"clsDruckUmsatzHW", u"Umsatz Handwerk", kUmsatzHWVariables,
                      kUmsatzHWFields) {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_UmsatzHW(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_UmsatzHW>(environment, std::move(request));
}

} // namespace kvtdruck
