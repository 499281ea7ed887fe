// Imputed costs, one year a page.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kKalkKostenVariables = joined({
    fixedNumber(u"Seitenwechsel", u"1"),
    companyNumber(),
    numbers(ValueType::Single, {u"FuerJahr"}),
    numbers(ValueType::Double, {u"DAfa", u"DSons", u"DWag", u"MMieteJahr", u"MMieteMon", u"Priv", u"QM", u"QMPreis",
                                u"UPausch", u"ZEK", u"ZPZins", u"ZDMZins"}),
});

/// The figures are variables; the only field is the page break.
const Table kKalkKostenFields;

class clsDruck_KalkKosten final : public ReaderReport {
  public:
    clsDruck_KalkKosten(const ReportEnvironment& environment, PrintRequest request)
        : ReaderReport(environment, std::move(request), u"clsDruck_KalkKosten", u"Kalkulatorische Kosten",
                       {clsZugKosten,
                        kKalkKostenVariables,
                        kKalkKostenFields,
                        {clsZugKosten.getter(u"FuerJahr")},
                        GroupChange::NewSheet}) {}

  private:
    ReadFailure readFailure() const override {
        return {u"Lese_Kosten", u"Die Kosten konnten nicht gelesen werden."};
    }
    bool readData() override { return readYears({request().pFnr, 0.0f}); }
};

} // namespace

std::unique_ptr<Report> new_clsDruck_KalkKosten(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_KalkKosten>(environment, std::move(request));
}

} // namespace kvtdruck
