// Turnover per year with its twelve months, one year a page.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kGeneralVariables = companyNumber();

const Table kUmsatzFields = joined({
    currency(u"Waehrung"),
    numbers(ValueType::Double, {u"IUmsatzDM"}),
    months(ValueType::Double, u"IUmsatzDM_"),
    numbers(ValueType::Double, {u"sUmsatzDM"}),
    months(ValueType::Double, u"sUmsatzDM_"),
});

class clsDruck_Umsatz final : public ReaderReport {
  public:
    clsDruck_Umsatz(const ReportEnvironment& environment, PrintRequest request)
        : ReaderReport(environment, std::move(request), u"clsDruck_Umsatz", u"Umsatz",
                       {clsZugUmsatz, kGeneralVariables, kUmsatzFields}) {}

  private:
    ReadFailure readFailure() const override {
        return {u"Lese_Umsatz", u"Die Umsatzdaten konnten nicht gelesen werden"};
    }
    bool readData() override { return readYears({request().pFnr}); }

    // The general variables' result does not stop the report; hosts never saw it do so.
    bool defineAll() override {
        Definiere_Übergebe_Variablen_Allg();
        return Definiere_Übergebe_Variablen_Jahr(readYear()) && Definiere_Übergebe_Felder();
    }

    bool defineBeforeFirstPage() override {
        Definiere_Übergebe_Variablen_Allg();
        return true;
    }

    // One record is one page, and a failing definition does not stop the others.
    bool printRecord(bool first) override {
        if (!first)
            adapter().LlPrint();
        showProgress();
        Definiere_Übergebe_Variablen_Jahr(readYear());
        Definiere_Übergebe_Felder();
        printLine();
        return true;
    }

    std::int16_t readYear() { return toInteger(reader().value(year_), locale()); }

    bool Definiere_Übergebe_Variablen_Allg() {
        return guardedProcedure(u"Definiere_Übergebe_Variablen_Allg", [this] {
            define(kVariable, variables(), record());
            return true;
        });
    }

    bool Definiere_Übergebe_Variablen_Jahr(std::int16_t year) {
        return guardedProcedure(u"Definiere_Übergebe_Variablen_Jahr", [&] {
            define(kVariable, u"Fuerjahr", decimal(year), kTypeNumeric);
            return true;
        });
    }

    Member year_{clsZugUmsatz.getter(u"Fuerjahr"), ValueType::Single};
};

} // namespace

std::unique_ptr<Report> new_clsDruck_Umsatz(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_Umsatz>(environment, std::move(request));
}

} // namespace kvtdruck
