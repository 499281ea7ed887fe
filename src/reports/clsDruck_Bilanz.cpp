// The balance-sheet figures of one year; the layout forms the ratios.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kBilanzVariables = joined({
    companyNumber(),
    cells(1,
          {u"Jahr", u"Gewinn", u"EK", u"Umsatz", u"ZinsFK", u"Bilanz", u"Abschr", u"Rueckst", u"FK", u"LFK",
           u"Anlage", u"Cash", u"Mat", u"Lager"},
          0),
});

/// The sheet has no table.
const Table kBilanzFields;

class clsDruck_Bilanz final : public ArrayReport {
  public:
    clsDruck_Bilanz(const ReportEnvironment& environment, PrintRequest request)
        : ArrayReport(environment, std::move(request), u"clsDruck_Bilanz", u"Bilanzkennzahlen", kBilanzVariables,
                      kBilanzFields) {}

  private:
    bool defineAll() override { return Definiere_Übergebe_Variablen(); }

    bool printRecords() override {
        printLine();
        return true;
    }
};

} // namespace

std::unique_ptr<Report> new_clsDruck_Bilanz(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_Bilanz>(environment, std::move(request));
}

} // namespace kvtdruck
