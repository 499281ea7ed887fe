// Material amounts and shares of each month and of the year, one year a page.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kMatUeberVariables = joined({
    companyNumber(),
    numbers(ValueType::Single, {u"Fuerjahr"}),
    numbers(ValueType::Double, {u"SMatVKPr", u"SUJMatDM", u"IMatVKPr", u"IUJMatDM"}),
});

const Table kMatUeberFields = joined({
    currency(u"FWaehr"),
    months(ValueType::Double, u"SUMMatDM_"),
    months(ValueType::Single, u"SUMMatpr_"),
    numbers(ValueType::Double, {u"SUMMatDM_Su"}),
    numbers(ValueType::Single, {u"SUMMatpr_Su"}),
    months(ValueType::Double, u"IUMMatDM_"),
    months(ValueType::Single, u"IUMMatpr_"),
    numbers(ValueType::Double, {u"IUMMatDM_Su"}),
    numbers(ValueType::Single, {u"IUMMatpr_Su"}),
    fixedNumber(u"Seitenwechsel", u"1"),
});

class clsDruck_MatUeber final : public ReaderReport {
  public:
    clsDruck_MatUeber(const ReportEnvironment& environment, PrintRequest request)
        : ReaderReport(environment, std::move(request), u"clsDruck_MatUeber", u"Materialübersicht",
                       {clsZugMaterial,
                        kMatUeberVariables,
                        kMatUeberFields,
                        {clsZugMaterial.getter(u"Fuerjahr")},
                        GroupChange::NewSheet}) {}

  private:
    ReadFailure readFailure() const override {
        return {u"Lese_Material", u"Das Material konnten nicht gelesen werden."};
    }
    bool readData() override { return readYears({request().pFnr, 0.0f}); }
};

} // namespace

std::unique_ptr<Report> new_clsDruck_MatUeber(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_MatUeber>(environment, std::move(request));
}

} // namespace kvtdruck
