// Reports on the accounts of a financial year: one line per account, with the amounts of the year and of one month.
#pragma once

#include "reports/reader_report.h"
#include "values/conversion.h"

namespace kvtdruck {

class Kontenbericht : public Leserbericht {
  public:
    Kontenbericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel);

  protected:
    /// A getter pair for the actual and the target amount.
    struct Betraege {
        Mitglied ist;
        Mitglied soll;
    };

    /// The factor that the current account's amounts are printed with, where it is not 1.
    virtual std::optional<double> Vorzeichen() { return std::nullopt; }
    /// Defines the chosen month's amounts.
    virtual void DefiniereMonat(Betraege& betraege);

    double Betrag(Mitglied& getter) { return toDouble(leser().wert(getter), locale()); }
    void DefiniereBetrag(StringView name, double betrag, std::optional<double> faktor);

    /// KtoBetrArt of the current account.
    float KtoBetrArt() { return toSingle(leser().wert(ktoBetrArt_), locale()); }

  private:
    Lesemeldung lesemeldung() const override;
    bool LeseDaten() override;
    bool Definiere_Übergebe_Felder() override;
    void DefiniereBetraege(StringView nameIst, StringView nameSoll, Betraege& betraege);
    std::optional<int> Monat();

    GebundeneTabelle konto_;
    GebundeneTabelle merkmale_;
    Betraege jahr_;
    std::vector<Betraege> monate_;
    Mitglied ktoBetrArt_{u"KtoBetrArt", ValueType::Single};
};

} // namespace kvtdruck
