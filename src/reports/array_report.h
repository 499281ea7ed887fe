// Reports fed by the host's parameter array: variables from row 0, one printed line per row.
#pragma once

#include "reports/report.h"

namespace kvtdruck {

class Feldbericht : public Bericht {
  public:
    Feldbericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel,
                const Tabelle& variablen, const Tabelle& felder)
        : Bericht(umgebung, std::move(auftrag), klasse, titel), variablen_(variablen), felder_(felder) {}

  protected:
    bool DefiniereAlles() override;
    bool DefiniereVorErsterSeite() override { return Definiere_Übergebe_Variablen(); }
    bool DruckeSaetze() override;

    bool Definiere_Übergebe_Variablen();
    bool Definiere_Übergebe_Felder(std::int16_t zeile);
    /// The fields of one row.
    virtual void DefiniereFelder(std::int16_t zeile);

  private:
    GebundeneTabelle variablen_;
    GebundeneTabelle felder_;
};

} // namespace kvtdruck
