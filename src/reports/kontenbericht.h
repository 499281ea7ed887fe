// Reports on the accounts of a financial year: one line per account, with the amounts of the year and of one month.
#pragma once

#include "reports/leserbericht.h"

namespace kvtdruck {

class Kontenbericht : public Leserbericht {
  public:
    Kontenbericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel);

  protected:
    /// The factor that the current account's amounts are printed with, where it is not 1.
    virtual std::optional<double> Vorzeichen() { return std::nullopt; }

    /// KtoBetrArt of the current account.
    float KtoBetrArt() { return toSingle(leser().wert(ktoBetrArt_), locale()); }

  private:
    /// A getter pair for the actual and the target amount.
    struct Betraege {
        Mitglied ist;
        Mitglied soll;
    };

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
