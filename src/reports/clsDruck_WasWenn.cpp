// The what-if calculation: each item with its value, its change and its increase.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Table kWasWennVariables = joined({
    companyNumber(),
    cells(1, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
    cells(11, {u"UPMa",    u"UStd",      u"WMa",        u"WStd",      u"SVer",     u"IVer",      u"TVer",
               u"SKnz",    u"BerStd",    u"BerStdPr",   u"BerStdErh", u"ProdLK",   u"ProdLKPr",  u"ProdLKErh",
               u"UProdLK", u"UProdLKPr", u"UProdLKErh", u"KULohn",    u"KULohnPr", u"KULohnErh", u"Mat",
               u"MatPr",   u"MatErh",    u"MatKnz",     u"VGem",      u"VGemPr",   u"VGemErh",   u"VGemKnz",
               u"FGem",    u"FGemPr",    u"FGemErh",    u"FGemKnz",   u"Aufw",     u"AufwPr",    u"AufwErh",
               u"AufwKnz", u"KKost",     u"KKostPr",    u"KKostErh",  u"KKostKnz"},
          0),
});

const Table kWasWennFields = joined({
    textCell(6, u"Text"),
    cells(7, {u"SDM", u"PDM", u"DDM", u"DPr"}),
});

/// The row's currency marker; in row 0 it is the variable "SKnz", too.
constexpr std::int32_t kCurrencyColumn = 18;

class clsDruck_WasWenn final : public ArrayReport {
  public:
    clsDruck_WasWenn(const ReportEnvironment& environment, PrintRequest request)
        : ArrayReport(environment, std::move(request), u"clsDruck_WasWenn", u"Was Wäre Wenn", kWasWennVariables,
                      kWasWennFields) {}

  private:
    // "EUR" stands for the company's currency, as a text; anything else passes as it is, and as a number.
    void defineFields(std::int16_t row) override {
        ArrayReport::defineFields(row);
        const auto cell = parray().Value(row, kCurrencyColumn);
        if (equals(cell, u"EUR", locale()))
            define(kField, u"FWaehr", currency(), kTypeText);
        else
            define(kField, u"FWaehr", toText(cell, locale()), kTypeNumeric);
    }
};

} // namespace

std::unique_ptr<Report> new_clsDruck_WasWenn(const ReportEnvironment& environment, PrintRequest request) {
    return std::make_unique<clsDruck_WasWenn>(environment, std::move(request));
}

} // namespace kvtdruck
