// The what-if calculation: each item with its value, its change and its increase.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zellen(1, {u"Jahr", u"SVMon", u"SBMon", u"IVMon", u"IBMon"}, 0),
    zellen(11, {u"UPMa",    u"UStd",      u"WMa",        u"WStd",      u"SVer",     u"IVer",      u"TVer",
                u"SKnz",    u"BerStd",    u"BerStdPr",   u"BerStdErh", u"ProdLK",   u"ProdLKPr",  u"ProdLKErh",
                u"UProdLK", u"UProdLKPr", u"UProdLKErh", u"KULohn",    u"KULohnPr", u"KULohnErh", u"Mat",
                u"MatPr",   u"MatErh",    u"MatKnz",     u"VGem",      u"VGemPr",   u"VGemErh",   u"VGemKnz",
                u"FGem",    u"FGemPr",    u"FGemErh",    u"FGemKnz",   u"Aufw",     u"AufwPr",    u"AufwErh",
                u"AufwKnz", u"KKost",     u"KKostPr",    u"KKostErh",  u"KKostKnz"},
           0),
});

const Tabelle kFelder = verkette({
    textzelle(6, u"Text"),
    zellen(7, {u"SDM", u"PDM", u"DDM", u"DPr"}),
});

/// The row's currency marker; in row 0 it is the variable "SKnz", too.
constexpr std::int32_t kWaehrungsspalte = 18;

class clsDruck_WasWenn final : public Feldbericht {
  public:
    clsDruck_WasWenn(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Feldbericht(umgebung, std::move(auftrag), u"clsDruck_WasWenn", u"Was Wäre Wenn", kVariablen, kFelder) {}

  private:
    // "EUR" stands for the company's currency, as a text; anything else passes as it is, and as a number.
    void DefiniereFelder(std::int16_t zeile) override {
        Feldbericht::DefiniereFelder(zeile);
        const auto zelle = parray().Value(zeile, kWaehrungsspalte);
        if (equals(zelle, u"EUR", locale()))
            Definiere(kFeld, u"FWaehr", waehrung(), kTypeText);
        else
            Definiere(kFeld, u"FWaehr", toText(zelle, locale()), kTypeNumeric);
    }
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_WasWenn(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_WasWenn>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
