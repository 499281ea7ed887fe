// The one class that the host application creates: it checks the company, registers the job and hands it to the
// report class that the list name chooses.
#pragma once

#include "control/control.h"
#include "manager/basLL80.h"
#include "reports/report_classes.h"

#include <span>

namespace kvtdruck {

/// A report as hosts ask for it.
struct Launcher {
    /// Compared letter by letter.
    StringView listName;
    /// The procedure's name in error reports.
    StringView procedure;
    ReportFactory* report;
};

/// All launchers, in the order of comparison.
std::span<const Launcher> allLaunchers();

/// `state`, `basLL80` and the form factory outlive the manager.
class clsDruckManager {
  public:
    clsDruckManager(ComponentState& state, basLL80& basLL80, FormFactory& formFactory)
        : state_(state), basLL80_(basLL80), formFactory_(formFactory) {}
    clsDruckManager(const clsDruckManager&) = delete;
    clsDruckManager& operator=(const clsDruckManager&) = delete;

    /// Keeps the host's open connection and makes a fresh job table. The result is always False, also when all went
    /// well; hosts ignore it.
    bool fkt_Init(const ObjectRef& pADOCon);

    /// Ends the viewers of a host window that closes, and deletes their preview files.
    bool Terminate_Preview(std::int32_t pParentHwnd);

    /// Handles one request. An unknown list name gives False without a message.
    bool fkt_Drucken(std::int16_t pPrintMode, double pFnr, const ObjectRef& pParArray, StringView pApppath,
                     StringView pListenname, bool pDruckmitDruckerauswahl, std::int32_t pParentHwnd,
                     std::int16_t pSelmoraFuer);

  private:
    /// The company's general data; empty where they can't be had, which is reported.
    ObjectRef Lese_Allgemeine_Firmendaten(const ObjectRef& connection, double pFnr);
    /// The request's row; empty where it could not be registered.
    std::unique_ptr<RunningRow> fkt_Registriere_Druckauftrag(std::int16_t pPrintMode, StringView pListenname,
                                                             std::int32_t pParentHwnd, StringView pPrevPath);
    std::unique_ptr<RunningRow> chooseRow(StringView pListenname, std::int32_t pParentHwnd, StringView pPrevPath);
    bool launch(const Launcher& launcher, RunningRow& row, PrintRequest request);

    ComponentState& state_;
    basLL80& basLL80_;
    FormFactory& formFactory_;
    ObjectRef connection_;
    ObjectRef company_;
};

} // namespace kvtdruck
