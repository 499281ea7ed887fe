// The eighteen report classes, by the names of their coclasses.
#pragma once

#include "reports/report.h"

#include <memory>

namespace kvtdruck {

/// Creates the report object for one request.
using Berichterzeuger = std::unique_ptr<Bericht>(const Berichtsumgebung& umgebung, Druckauftrag auftrag);

Berichterzeuger neu_clsDruck_Umsatz;
Berichterzeuger neu_clsDRuck_MitarbeiterUebersicht;
Berichterzeuger neu_clsDruck_Firma;
Berichterzeuger neu_clsDruck_GemeinK;
Berichterzeuger neu_clsDruck_MitarbeiterKosten;
Berichterzeuger neu_clsDruck_MitarbeiterZeiten;
Berichterzeuger neu_clsDruck_NeutralA;
Berichterzeuger neu_clsDruck_MitarbeiterStKosten;
Berichterzeuger neu_clsDruck_MitarbeiterStZeiten;
Berichterzeuger neu_clsDruck_KalkKosten;
Berichterzeuger neu_clsDruck_MatUeber;
Berichterzeuger neu_clsDruck_Bilanz;
Berichterzeuger neu_clsDruck_BsEMa;
Berichterzeuger neu_clsDruck_BsEStd;
Berichterzeuger neu_clsDruck_BsEGes;
Berichterzeuger neu_clsDruck_Kalkwerte;
Berichterzeuger neu_clsDruck_WasWenn;
Berichterzeuger neu_clsDruck_UmsatzHW;

} // namespace kvtdruck
