#include "manager/clsDruckManager.h"

#include "engine/clsDruckFormular.h"
#include "module/error_rule.h"
#include "values/conversion.h"

namespace kvtdruck {
namespace {

constexpr StringView kKlasse = u"clsDruckManager";
constexpr std::int16_t kVorschau = 1;
constexpr std::int16_t kKeineZeile = -1;

constexpr Launcher kLauncher[] = {
    {u"Umsatz", u"Dr_Umsatz", neu_clsDruck_Umsatz},
    {u"MitUeber", u"Dr_MitarbeiterUebersicht", neu_clsDRuck_MitarbeiterUebersicht},
    {u"Firma", u"Dr_Firma_Allg", neu_clsDruck_Firma},
    {u"GemeinK", u"Dr_Gemeinkosten", neu_clsDruck_GemeinK},
    {u"NeutralA", u"Dr_NeutraleAufwendungen", neu_clsDruck_NeutralA},
    {u"MaKost", u"Dr_MitarbeiterKosten", neu_clsDruck_MitarbeiterKosten},
    {u"MaZeit", u"Dr_MitarbeiterZeiten", neu_clsDruck_MitarbeiterZeiten},
    {u"MaStKost", u"Dr_MitarbeiterStammKosten", neu_clsDruck_MitarbeiterStKosten},
    {u"MaStZeit", u"Dr_MitarbeiterStammZeiten", neu_clsDruck_MitarbeiterStZeiten},
    {u"KalkKo", u"Dr_KalkulatorischeKosten", neu_clsDruck_KalkKosten},
    {u"MatUeber", u"Dr_MaterialUebersicht", neu_clsDruck_MatUeber},
    {u"Bilanz", u"Dr_Bilanz", neu_clsDruck_Bilanz},
    {u"BsEMa", u"Dr_BetriebUbersicht_MA", neu_clsDruck_BsEMa},
    {u"BsEStd", u"Dr_BetriebUbersicht_Std", neu_clsDruck_BsEStd},
    {u"BsEGes", u"Dr_BetriebUbersicht_Ges", neu_clsDruck_BsEGes},
    {u"KalkW", u"Dr_Kalkulationswerte", neu_clsDruck_Kalkwerte},
    {u"WasWenn", u"Dr_WasWaereWenn", neu_clsDruck_WasWenn},
    {u"UmsatzHW", u"Dr_UmsatzHW", neu_clsDruck_UmsatzHW},
};

/// The list name and the moment, without ".", ":" and " ". Other signs of a locale's date stay, as they always
/// have.
String previewName(StringView listenname, Date jetzt, const Locale& locale) {
    auto name = String(listenname) + textOf(jetzt, locale);
    for (const StringView zeichen : {u".", u":", u" "})
        name = without(name, zeichen);
    return name;
}

} // namespace

std::span<const Launcher> alleLauncher() {
    return kLauncher;
}

bool clsDruckManager::fkt_Init(const ObjectRef& pADOCon) {
    return guarded(state_, {kKlasse, u"fkt_Init"}, [&] {
        connection_ = pADOCon;
        basLL80_.ErzeugeTabelle();
        return false; // never set to True: hosts know it so
    });
}

// Reports nothing: a failing step is skipped.
bool clsDruckManager::Terminate_Preview(std::int32_t pParentHwnd) {
    bool ergebnis = true;
    skippingErrors([&] {
        for (std::int16_t zeile = 0; zeile < basLL80_.Zeilenzahl(); ++zeile) {
            const auto& druck = basLL80_.Zeile(zeile);
            if (druck.parentHwnd == pParentHwnd)
                ergebnis = basLL80_.fkt_Terminiere_Review(u"", druck.prevPath, zeile);
        }
    });
    return ergebnis;
}

bool clsDruckManager::fkt_Drucken(std::int16_t pPrintMode, double pFnr, const ObjectRef& pParArray,
                                  StringView pApppath, StringView pListenname, bool pDruckmitDruckerauswahl,
                                  std::int32_t pParentHwnd, std::int16_t pSelmoraFuer) {
    return guarded(state_, {kKlasse, u"fkt_Drucken"}, [&] {
        state_.pSelmoraFuer = pSelmoraFuer;
        if (!Lese_Allgemeine_Firmendaten(pFnr))
            return false;
        // The request's own: a host that prints again while its messages are processed changes none of them.
        const auto firma = firma_;
        const String listenname(pListenname);
        const auto listenPath = String(pApppath) + u"\\DB\\BerichteLLVT";
        const auto prevPath = pPrintMode == kVorschau ? listenPath + u"\\Preview" : listenPath;
        if (!fkt_Registriere_Druckauftrag(pPrintMode, listenname, pParentHwnd, prevPath))
            return false;
        if (pPrintMode == kVorschau)
            required(basLL80_.Zeile(aktZeile_).formular).LlPreviewSetTempPath(prevPath);
        for (const auto& launcher : kLauncher) {
            if (launcher.listenname == listenname)
                return Starte(launcher, {pPrintMode, pFnr, connection_, firma, nullptr, listenPath, listenname,
                                         pDruckmitDruckerauswahl, pParArray, prevPath, aktZeile_});
        }
        return false;
    });
}

bool clsDruckManager::Starte(const Launcher& launcher, Druckauftrag auftrag) {
    return guarded(state_, {kKlasse, launcher.prozedur}, [&] {
        // Held here as well: the window's next job may replace the row's adapter while this one runs.
        const auto formular = basLL80_.Zeile(aktZeile_).formular;
        auftrag.pDrFormDll = formular.get();
        return launcher.bericht({state_, basLL80_}, std::move(auftrag))->fkt_Drucken();
    });
}

bool clsDruckManager::Lese_Allgemeine_Firmendaten(double pFnr) {
    const Procedure prozedur{kKlasse, u"Lese_Allgemeine_Firmendaten"};
    return guarded(state_, prozedur, [&] {
        firma_ = state_.dataLibrary().create(clsZugFirmaAllg);
        FirmaAllg firma(state_, firma_);
        if (!firma.Verbinde(connection_)) {
            state_.report(prozedur, u"Die allgemeinen Firmendaten konnten nicht gelesen werden");
            return false;
        }
        if (firma.LeseFirmaAllg(pFnr))
            return true;
        state_.report(prozedur, u"Die allgemeinen Firmendaten für die Firma " + textOf(pFnr, state_.locale()) +
                                    u" sind nicht vorhanden.");
        return false;
    });
}

bool clsDruckManager::fkt_Registriere_Druckauftrag(std::int16_t pPrintMode, StringView pListenname,
                                                   std::int32_t pParentHwnd, StringView pPrevPath) {
    // Reports under a blank name; the host's error log depends on it.
    return guarded(state_, {kKlasse, u" "}, [&] {
        aktZeile_ = kKeineZeile;
        aktZeile_ = WaehleZeile(pListenname, pParentHwnd, pPrevPath);
        const auto formular = std::make_shared<clsDruckFormular>(state_, formFactory_);
        basLL80_.Zeile(aktZeile_).formular = formular;
        formular->fkt_Starte_Form();

        auto& druck = basLL80_.Zeile(aktZeile_);
        druck.parentHwnd = pParentHwnd;
        druck.listenname = pListenname;
        druck.istPreview = false;
        druck.prozess = 0;
        druck.previewName = previewName(pListenname, state_.platform().now(), state_.locale());
        druck.prevPath = pPrevPath;
        if (pPrintMode == kVorschau)
            druck.istPreview = true;
        return true;
    });
}

/// The window's row, its viewers ended, or else a new one. Among several rows of the window the last one is taken.
std::int16_t clsDruckManager::WaehleZeile(StringView pListenname, std::int32_t pParentHwnd, StringView pPrevPath) {
    auto gewaehlt = kKeineZeile;
    for (std::int16_t zeile = 0; zeile < basLL80_.Zeilenzahl(); ++zeile) {
        if (basLL80_.Zeile(zeile).parentHwnd == pParentHwnd) {
            gewaehlt = zeile;
            basLL80_.fkt_Terminiere_Review(pListenname, pPrevPath, zeile);
        }
    }
    if (gewaehlt != kKeineZeile)
        return gewaehlt;
    gewaehlt = basLL80_.HaengeZeileAn();
    basLL80_.Loesche_Previewdateien(pListenname, pPrevPath, gewaehlt);
    return gewaehlt;
}

} // namespace kvtdruck
