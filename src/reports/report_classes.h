// The eighteen report classes, by the names of their coclasses.
#pragma once

#include "reports/report.h"

#include <memory>

namespace kvtdruck {

/// Creates the report object for one request.
using ReportFactory = std::unique_ptr<Report>(const ReportEnvironment& environment, PrintRequest request);

ReportFactory new_clsDruck_Umsatz;
ReportFactory new_clsDRuck_MitarbeiterUebersicht;
ReportFactory new_clsDruck_Firma;
ReportFactory new_clsDruck_GemeinK;
ReportFactory new_clsDruck_MitarbeiterKosten;
ReportFactory new_clsDruck_MitarbeiterZeiten;
ReportFactory new_clsDruck_NeutralA;
ReportFactory new_clsDruck_MitarbeiterStKosten;
ReportFactory new_clsDruck_MitarbeiterStZeiten;
ReportFactory new_clsDruck_KalkKosten;
ReportFactory new_clsDruck_MatUeber;
ReportFactory new_clsDruck_Bilanz;
ReportFactory new_clsDruck_BsEMa;
ReportFactory new_clsDruck_BsEStd;
ReportFactory new_clsDruck_BsEGes;
ReportFactory new_clsDruck_Kalkwerte;
ReportFactory new_clsDruck_WasWenn;
ReportFactory new_clsDruck_UmsatzHW;

} // namespace kvtdruck
