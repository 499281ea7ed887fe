// Imputed costs, one year a page.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    festwert(u"Seitenwechsel", u"1"),
    firmennummer(),
    zahlen(ValueType::Single, {u"FuerJahr"}),
    zahlen(ValueType::Double, {u"DAfa", u"DSons", u"DWag", u"MMieteJahr", u"MMieteMon", u"Priv", u"QM", u"QMPreis",
                               u"UPausch", u"ZEK", u"ZPZins", u"ZDMZins"}),
});

/// The figures are variables; the only field is the page break.
const Tabelle kFelder;

class clsDruck_KalkKosten final : public Leserbericht {
  public:
    clsDruck_KalkKosten(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Leserbericht(
              umgebung, std::move(auftrag), u"clsDruck_KalkKosten", u"Kalkulatorische Kosten",
              {clsZugKosten, kVariablen, kFelder, {clsZugKosten.getter(u"FuerJahr")}, Gruppenwechsel::NeuesBlatt}) {
    }

  private:
    Lesemeldung lesemeldung() const override {
        return {u"Lese_Kosten", u"Die Kosten konnten nicht gelesen werden."};
    }
    bool LeseDaten() override { return LeseJahre({auftrag().pFnr, 0.0f}); }
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_KalkKosten(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_KalkKosten>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
