// Turnover of a trade business by kind of invoice.
#include "reports/array_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

/// The year stands in row 1, unlike in all other arrays.
const Tabelle kVariablen = verkette({
    firmennummer(),
    zellen(0, {u"Jahr"}, 1),
});

const Tabelle kFelder = verkette({
    zellen(1, {u"Taglohn", u"WartRechnungen", u"Rechnungen", u"AbgrAZ", u"OffeneAZ", u"SchlussRechnung",
               u"Gutschrift", u"Saldo"}),
    textzelle(9, u"Text"),
});

/// Error reports spell the class without its underscore; the host's error log depends on it.
class clsDruck_UmsatzHW final : public Feldbericht {
  public:
    clsDruck_UmsatzHW(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Feldbericht(umgebung, std::move(auftrag), u"clsDruckUmsatzHW", u"Umsatz Handwerk", kVariablen, kFelder) {}
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_UmsatzHW(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_UmsatzHW>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
