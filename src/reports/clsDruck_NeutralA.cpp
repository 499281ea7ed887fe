// The neutral expenses of a financial year: overhead accounts with a sign rule.
#include "reports/account_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

class clsDruck_NeutralA final : public AccountReport {
  public:
    clsDruck_NeutralA(const ReportEnvironment& environment, PrintRequest request)
        : AccountReport(environment, std::move(request), u"clsDruck_NeutralA", u"Neutrale Aufwendungen") {}

  private:
    // Any kind of amount but 0 reverses the sign; read anew for the year's and for the month's amounts.
    std::optional<double> signFactor() override { return KtoBetrArt() != 0 ? std::optional(-1.0) : std::nullopt; }

    // Both amounts of the month are taken before the kind is read anew and the first of them is defined.
    void defineMonth(Amounts& amounts) override {
        const auto actual = amountOf(amounts.actual);
        const auto target = amountOf(amounts.target);
        const auto factor = signFactor();
        defineAmount(u"MonatIst", actual, factor);
        defineAmount(u"MonatSoll", target, factor);
    }
};

} // namespace

std::unique_ptr<Report> new_clsDruck_NeutralA(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_NeutralA>(environment, std::move(request));
}

} // namespace kvtdruck
