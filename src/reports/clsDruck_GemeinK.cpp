// The overhead accounts of a financial year.
#include "reports/account_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

class clsDruck_GemeinK final : public AccountReport {
  public:
    clsDruck_GemeinK(const ReportEnvironment& environment, PrintRequest request)
        : AccountReport(environment, std::move(request), u"clsDruck_GemeinK", u"Gemeinkosten") {}
};

} // namespace

std::unique_ptr<Report> new_clsDruck_GemeinK(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_GemeinK>(environment, std::move(request));
}

} // namespace kvtdruck
