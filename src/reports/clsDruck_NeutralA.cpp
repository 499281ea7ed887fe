// The neutral expenses of a financial year: overhead accounts with a sign rule.
#include "reports/account_report.h"
#include "reports/report_classes.h"

namespace kvtdruck {
namespace {

class clsDruck_NeutralA final : public Kontenbericht {
  public:
    clsDruck_NeutralA(const Berichtsumgebung& umgebung, Druckauftrag auftrag)
        : Kontenbericht(umgebung, std::move(auftrag), u"clsDruck_NeutralA", u"Neutrale Aufwendungen") {}

  private:
    // Any kind of amount but 0 reverses the sign; read anew for the year's and for the month's amounts.
    std::optional<double> Vorzeichen() override { return KtoBetrArt() != 0 ? std::optional(-1.0) : std::nullopt; }

    // Both amounts of the month are taken before the kind is read anew and the first of them is defined.
    void DefiniereMonat(Betraege& betraege) override {
        const auto ist = Betrag(betraege.ist);
        const auto soll = Betrag(betraege.soll);
        const auto faktor = Vorzeichen();
        DefiniereBetrag(u"MonatIst", ist, faktor);
        DefiniereBetrag(u"MonatSoll", soll, faktor);
    }
};

} // namespace

std::unique_ptr<Bericht> neu_clsDruck_NeutralA(const Berichtsumgebung& umgebung, Druckauftrag auftrag) {
    return std::make_unique<clsDruck_NeutralA>(umgebung, std::move(auftrag));
}

} // namespace kvtdruck
