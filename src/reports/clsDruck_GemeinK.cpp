// The overhead accounts of a financial year.
#include "reports/account_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

class clsDruck_GemeinK final : public Kontenbericht {
  public:
    clsDruck_GemeinK(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Kontenbericht(umgebung, std::move(auftrag), u"clsDruck_GemeinK", u"Gemeinkosten") {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_GemeinK(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_GemeinK>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
