// Material amounts and shares of each month and of the year, one year a page.
#include "reports/reader_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

const Tabelle kVariablen = verkette({
    firmennummer(),
    zahlen(ValueType::Single, {u"Fuerjahr"}),
    zahlen(ValueType::Double, {u"SMatVKPr", u"SUJMatDM", u"IMatVKPr", u"IUJMatDM"}),
});

const Tabelle kFelder = verkette({
    waehrung(u"FWaehr"),
    monate(ValueType::Double, u"SUMMatDM_"),
    monate(ValueType::Single, u"SUMMatpr_"),
    zahlen(ValueType::Double, {u"SUMMatDM_Su"}),
    zahlen(ValueType::Single, {u"SUMMatpr_Su"}),
    monate(ValueType::Double, u"IUMMatDM_"),
    monate(ValueType::Single, u"IUMMatpr_"),
    zahlen(ValueType::Double, {u"IUMMatDM_Su"}),
    zahlen(ValueType::Single, {u"IUMMatpr_Su"}),
    festwert(u"Seitenwechsel", u"1"),
});

class clsDruck_MatUeber final : public Leserbericht {
  public:
    clsDruck_MatUeber(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Leserbericht(umgebung, std::move(auftrag), u"clsDruck_MatUeber", u"Materialübersicht",
                       {clsZugMaterial,
                        kVariablen,
                        kFelder,
                        {clsZugMaterial.getter(u"Fuerjahr")},
                        Gruppenwechsel::NeuesBlatt}) {}

  private:
    Lesemeldung lesemeldung() const override {
        return {u"Lese_Material", u"Das Material konnten nicht gelesen werden."};
    }
    bool LeseDaten() override { return LeseJahre({auftrag().pFnr, 0.0f}); }
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_MatUeber(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_MatUeber>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
