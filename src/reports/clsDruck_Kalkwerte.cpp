// Calculation values, per hour or per minute.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kKalkwerteVariables = joined({
    companyNumber(),
    cells(1, {u"Jahr"}, 0),
    cells(3, {u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
    cells(15,
          {u"SMateinsatz", u"SBerStd", u"SGewMat", u"SMatSt", u"SMatZu", u"SGewMatStd", u"IMateinsatz", u"IBerStd",
           u"IGewMat", u"IMatSt", u"IMatZu", u"IGewMatStd"},
          0),
});

const Table kKalkwerteFields = joined({
    textCell(2, u"Text"),
    currency(u"FWaehr"),
    cells(7, {u"SDBPr", u"SDB", u"SVerPr", u"SVer", u"IDBPr", u"IDB", u"IVerPr", u"IVer"}),
});

class clsDruck_Kalkwerte final : public ArrayReport {
  public:
    clsDruck_Kalkwerte(const ReportEnvironment& environment, PrintRequest request)
        : ArrayReport(environment, std::move(request), u"clsDruck_Kalkwerte", u"", kKalkwerteVariables,
                      kKalkwerteFields) {}

  private:
    // The switch chooses the heading alone: the host supplies the figures in the unit.
    void chooseTitle() override {
        setTitle(parray().is(0, 27, 0.0) ? u"Kalkulationswerte je Stunde" : u"Kalkulationswerte je Minute");
    }
};

} // namespace

std::unique_ptr<Report> new_clsDruck_Kalkwerte(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_Kalkwerte>(environment, std::move(request));
}

} // namespace kvtdruck
