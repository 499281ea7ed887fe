#include "manager/clsDruckManager.h"

#include "dataaccess/company_data.h"
#include "engine/clsDruckFormular.h"
#include "module/error_rule.h"
#include "values/conversion.h"

#include <utility>

namespace kvtdruck {
namespace {

constexpr StringView kClass = u"clsDruckManager";

constexpr Launcher kLaunchers[] = {
    {u"Umsatz", u"Dr_Umsatz", new_clsDruck_Umsatz},
    {u"MitUeber", u"Dr_MitarbeiterUebersicht", new_clsDRuck_MitarbeiterUebersicht},
    {u"Firma", u"Dr_Firma_Allg", new_clsDruck_Firma},
    {u"GemeinK", u"Dr_Gemeinkosten", new_clsDruck_GemeinK},
    {u"NeutralA", u"Dr_NeutraleAufwendungen", new_clsDruck_NeutralA},
    {u"MaKost", u"Dr_MitarbeiterKosten", new_clsDruck_MitarbeiterKosten},
    {u"MaZeit", u"Dr_MitarbeiterZeiten", new_clsDruck_MitarbeiterZeiten},
    {u"MaStKost", u"Dr_MitarbeiterStammKosten", new_clsDruck_MitarbeiterStKosten},
    {u"MaStZeit", u"Dr_MitarbeiterStammZeiten", new_clsDruck_MitarbeiterStZeiten},
    {u"KalkKo", u"Dr_KalkulatorischeKosten", new_clsDruck_KalkKosten},
    {u"MatUeber", u"Dr_MaterialUebersicht", new_clsDruck_MatUeber},
    {u"Bilanz", u"Dr_Bilanz", new_clsDruck_Bilanz},
    {u"BsEMa", u"Dr_BetriebUbersicht_MA", new_clsDruck_BsEMa},
    {u"BsEStd", u"Dr_BetriebUbersicht_Std", new_clsDruck_BsEStd},
    {u"BsEGes", u"Dr_BetriebUbersicht_Ges", new_clsDruck_BsEGes},
    {u"KalkW", u"Dr_Kalkulationswerte", new_clsDruck_Kalkwerte},
    {u"WasWenn", u"Dr_WasWaereWenn", new_clsDruck_WasWenn},
    {u"UmsatzHW", u"Dr_UmsatzHW", new_clsDruck_UmsatzHW},
};

/// The list name and the moment, without ".", ":" and " ". Other signs of a locale's date stay, as they always
/// have.
String previewName(StringView listName, Date now, const Locale& locale) {
    auto name = String(listName) + textOf(now, locale);
    for (const StringView sign : {u".", u":", u" "})
        name = without(name, sign);
    return name;
}

/// The product mode of a request, for as long as it runs. The last one stays; a request that ran within another one
/// gives that its own back.
class ProductMode {
  public:
    ProductMode(ComponentState& state, std::int16_t value)
        : state_(state), previous_(std::exchange(state.pSelmoraFuer, value)) {
        ++state_.runningRequests;
    }
    ProductMode(const ProductMode&) = delete;
    ProductMode& operator=(const ProductMode&) = delete;
    ~ProductMode() {
        if (--state_.runningRequests > 0)
            state_.pSelmoraFuer = previous_;
    }

  private:
    ComponentState& state_;
    std::int16_t previous_;
};

} // namespace

std::span<const Launcher> allLaunchers() {
    return kLaunchers;
}

bool clsDruckManager::fkt_Init(const ObjectRef& pADOCon) {
    return guarded(state_, {kClass, u"fkt_Init"}, [&] {
        connection_ = ObjectRef(pADOCon); // moved: letting go of the earlier one may call the host
        basLL80_.createTable();
        return false; // never set to True: hosts know it so
    });
}

// Reports nothing: a failing step is skipped.
bool clsDruckManager::Terminate_Preview(std::int32_t pParentHwnd) {
    bool result = true;
    skippingErrors([&] {
        for (std::int16_t row = 0; row < basLL80_.rowCount(); ++row) {
            const auto job = basLL80_.rowAt(row);
            if (job->parentHwnd == pParentHwnd)
                result = basLL80_.fkt_Terminiere_Review(u"", String(job->prevPath), *job);
        }
    });
    return result;
}

bool clsDruckManager::fkt_Drucken(std::int16_t pPrintMode, double pFnr, const ObjectRef& pParArray,
                                  StringView pApppath, StringView pListenname, bool pDruckmitDruckerauswahl,
                                  std::int32_t pParentHwnd, std::int16_t pSelmoraFuer) {
    return guarded(state_, {kClass, u"fkt_Drucken"}, [&] {
        const ProductMode productMode(state_, pSelmoraFuer);
        // Connection, company, row and names are the request's own: a host that prints, connects or closes windows
        // while foreign code runs or its messages are processed changes none of them.
        const auto connection = connection_;
        const auto company = Lese_Allgemeine_Firmendaten(connection, pFnr);
        if (!company)
            return false;
        const String listName(pListenname);
        const auto listenPath = String(pApppath) + u"\\DB\\BerichteLLVT";
        const auto prevPath = pPrintMode == kPreview ? listenPath + u"\\Preview" : listenPath;
        const auto row = fkt_Registriere_Druckauftrag(pPrintMode, listName, pParentHwnd, prevPath);
        if (!row)
            return false;
        if (pPrintMode == kPreview)
            required(row->job().adapter).LlPreviewSetTempPath(prevPath);
        for (const auto& launcher : kLaunchers) {
            if (launcher.listName == listName)
                return launch(launcher, *row,
                              {pPrintMode, pFnr, connection, company, nullptr, listenPath, listName,
                               pDruckmitDruckerauswahl, pParArray, prevPath, row->index()});
        }
        return false;
    });
}

bool clsDruckManager::launch(const Launcher& launcher, RunningRow& row, PrintRequest request) {
    return guarded(state_, {kClass, launcher.procedure}, [&] {
        request.pDrFormDll = row.job().adapter.get();
        return launcher.report({state_, row}, std::move(request))->fkt_Drucken();
    });
}

ObjectRef clsDruckManager::Lese_Allgemeine_Firmendaten(const ObjectRef& connection, double pFnr) {
    const Procedure procedure{kClass, u"Lese_Allgemeine_Firmendaten"};
    return guarded(state_, procedure, [&]() -> ObjectRef {
        auto object = state_.dataLibrary().create(clsZugFirmaAllg);
        company_ = ObjectRef(object); // moved, as the connection is
        CompanyData company(state_, object);
        if (!company.connect(connection)) {
            state_.report(procedure, u"Die allgemeinen Firmendaten konnten nicht gelesen werden");
            return nullptr;
        }
        if (company.read(pFnr))
            return object;
        state_.report(procedure, u"Die allgemeinen Firmendaten für die Firma " + textOf(pFnr, state_.locale()) +
                                     u" sind nicht vorhanden.");
        return nullptr;
    });
}

std::unique_ptr<RunningRow> clsDruckManager::fkt_Registriere_Druckauftrag(std::int16_t pPrintMode,
                                                                          StringView pListenname,
                                                                          std::int32_t pParentHwnd,
                                                                          StringView pPrevPath) {
    // Reports under a blank name; the host's error log depends on it.
    return guarded(state_, {kClass, u" "}, [&] {
        auto row = chooseRow(pListenname, pParentHwnd, pPrevPath);
        auto& job = row->job();
        job.adapter = std::make_shared<clsDruckFormular>(state_, formFactory_);
        job.adapter->fkt_Starte_Form();

        job.parentHwnd = pParentHwnd;
        job.listName = pListenname;
        job.isPreview = pPrintMode == kPreview;
        job.process = {};
        job.previewName = previewName(pListenname, state_.platform().now(), state_.locale());
        job.prevPath = pPrevPath;
        return row;
    });
}

/// The window's row, its viewers ended, or else a new one. Among several rows of the window the last one is taken.
/// A row that a request of the window works on at this moment is left to it.
std::unique_ptr<RunningRow> clsDruckManager::chooseRow(StringView pListenname, std::int32_t pParentHwnd,
                                                       StringView pPrevPath) {
    std::unique_ptr<RunningRow> chosen;
    // Rows that are added meanwhile belong to others.
    const auto count = basLL80_.rowCount();
    for (std::int16_t row = 0; row < count && row < basLL80_.rowCount(); ++row) {
        const auto job = basLL80_.rowAt(row);
        if (job->isBusy || job->parentHwnd != pParentHwnd)
            continue;
        chosen = std::make_unique<RunningRow>(basLL80_, row);
        basLL80_.fkt_Terminiere_Review(pListenname, pPrevPath, *job);
    }
    if (!chosen) {
        chosen = std::make_unique<RunningRow>(basLL80_, basLL80_.appendRow());
        basLL80_.Loesche_Previewdateien(pListenname, pPrevPath, chosen->job());
    }
    return chosen;
}

} // namespace kvtdruck
