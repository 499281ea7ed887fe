#include "manager/clsDruckManager.h"

#include "dataaccess/company_data.h"
#include "engine/clsDruckFormular.h"
#include "module/error_rule.h"
#include "values/conversion.h"

namespace kvtdruck {
namespace {

constexpr StringView kClass = u"clsDruckManager";
constexpr std::int16_t kNoRow = -1;

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

} // namespace

std::span<const Launcher> allLaunchers() {
    return kLaunchers;
}

bool clsDruckManager::fkt_Init(const ObjectRef& pADOCon) {
    return guarded(state_, {kClass, u"fkt_Init"}, [&] {
        connection_ = pADOCon;
        basLL80_.createTable();
        return false; // never set to True: hosts know it so
    });
}

// Reports nothing: a failing step is skipped.
bool clsDruckManager::Terminate_Preview(std::int32_t pParentHwnd) {
    bool result = true;
    skippingErrors([&] {
        for (std::int16_t row = 0; row < basLL80_.rowCount(); ++row) {
            const auto& job = basLL80_.rowAt(row);
            if (job.parentHwnd == pParentHwnd)
                result = basLL80_.fkt_Terminiere_Review(u"", job.prevPath, row);
        }
    });
    return result;
}

bool clsDruckManager::fkt_Drucken(std::int16_t pPrintMode, double pFnr, const ObjectRef& pParArray,
                                  StringView pApppath, StringView pListenname, bool pDruckmitDruckerauswahl,
                                  std::int32_t pParentHwnd, std::int16_t pSelmoraFuer) {
    return guarded(state_, {kClass, u"fkt_Drucken"}, [&] {
        state_.pSelmoraFuer = pSelmoraFuer;
        if (!Lese_Allgemeine_Firmendaten(pFnr))
            return false;
        // The request's own: a host that prints again while its messages are processed changes none of them.
        const auto company = company_;
        const String listName(pListenname);
        const auto listenPath = String(pApppath) + u"\\DB\\BerichteLLVT";
        const auto prevPath = pPrintMode == kPreview ? listenPath + u"\\Preview" : listenPath;
        if (!fkt_Registriere_Druckauftrag(pPrintMode, listName, pParentHwnd, prevPath))
            return false;
        if (pPrintMode == kPreview)
            required(basLL80_.rowAt(currentRow_).adapter).LlPreviewSetTempPath(prevPath);
        for (const auto& launcher : kLaunchers) {
            if (launcher.listName == listName)
                return launch(launcher, {pPrintMode, pFnr, connection_, company, nullptr, listenPath, listName,
                                         pDruckmitDruckerauswahl, pParArray, prevPath, currentRow_});
        }
        return false;
    });
}

bool clsDruckManager::launch(const Launcher& launcher, PrintRequest request) {
    return guarded(state_, {kClass, launcher.procedure}, [&] {
        // Held here as well: the window's next job may replace the row's adapter while this one runs.
        const auto adapter = basLL80_.rowAt(currentRow_).adapter;
        request.pDrFormDll = adapter.get();
        return launcher.report({state_, basLL80_}, std::move(request))->fkt_Drucken();
    });
}

bool clsDruckManager::Lese_Allgemeine_Firmendaten(double pFnr) {
    const Procedure procedure{kClass, u"Lese_Allgemeine_Firmendaten"};
    return guarded(state_, procedure, [&] {
        company_ = state_.dataLibrary().create(clsZugFirmaAllg);
        CompanyData company(state_, company_);
        if (!company.connect(connection_)) {
            state_.report(procedure, u"Die allgemeinen Firmendaten konnten nicht gelesen werden");
            return false;
        }
        if (company.read(pFnr))
            return true;
        state_.report(procedure, u"Die allgemeinen Firmendaten für die Firma " + textOf(pFnr, state_.locale()) +
                                     u" sind nicht vorhanden.");
        return false;
    });
}

bool clsDruckManager::fkt_Registriere_Druckauftrag(std::int16_t pPrintMode, StringView pListenname,
                                                   std::int32_t pParentHwnd, StringView pPrevPath) {
    // Reports under a blank name; the host's error log depends on it.
    return guarded(state_, {kClass, u" "}, [&] {
        currentRow_ = kNoRow;
        currentRow_ = chooseRow(pListenname, pParentHwnd, pPrevPath);
        const auto adapter = std::make_shared<clsDruckFormular>(state_, formFactory_);
        basLL80_.rowAt(currentRow_).adapter = adapter;
        adapter->fkt_Starte_Form();

        auto& job = basLL80_.rowAt(currentRow_);
        job.parentHwnd = pParentHwnd;
        job.listName = pListenname;
        job.isPreview = false;
        job.process = 0;
        job.previewName = previewName(pListenname, state_.platform().now(), state_.locale());
        job.prevPath = pPrevPath;
        if (pPrintMode == kPreview)
            job.isPreview = true;
        return true;
    });
}

/// The window's row, its viewers ended, or else a new one. Among several rows of the window the last one is taken.
std::int16_t clsDruckManager::chooseRow(StringView pListenname, std::int32_t pParentHwnd, StringView pPrevPath) {
    auto chosen = kNoRow;
    for (std::int16_t row = 0; row < basLL80_.rowCount(); ++row) {
        if (basLL80_.rowAt(row).parentHwnd == pParentHwnd) {
            chosen = row;
            basLL80_.fkt_Terminiere_Review(pListenname, pPrevPath, row);
        }
    }
    if (chosen != kNoRow)
        return chosen;
    chosen = basLL80_.appendRow();
    basLL80_.Loesche_Previewdateien(pListenname, pPrevPath, chosen);
    return chosen;
}

} // namespace kvtdruck
