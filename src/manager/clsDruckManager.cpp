#include "manager/clsDruckManager.h"

#include "engine/clsDruckFormular.h"
#include "module/error_rule.h"
#include "values/conversion.h"

#include <utility>

namespace kvtdruck {
namespace {

constexpr StringView kKlasse = u"clsDruckManager";
constexpr std::int16_t kVorschau = 1;

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

/// The product mode of a request, for as long as it runs. The last one stays; a request that ran within another one
/// gives that its own back.
class Produktmodus {
  public:
    Produktmodus(ComponentState& state, std::int16_t wert)
        : state_(state), voriger_(std::exchange(state.pSelmoraFuer, wert)) {
        ++state_.laufendeAuftraege;
    }
    Produktmodus(const Produktmodus&) = delete;
    Produktmodus& operator=(const Produktmodus&) = delete;
    ~Produktmodus() {
        if (--state_.laufendeAuftraege > 0)
            state_.pSelmoraFuer = voriger_;
    }

  private:
    ComponentState& state_;
    std::int16_t voriger_;
};

} // namespace

std::span<const Launcher> alleLauncher() {
    return kLauncher;
}

bool clsDruckManager::fkt_Init(const ObjectRef& pADOCon) {
    return guarded(state_, {kKlasse, u"fkt_Init"}, [&] {
        connection_ = ObjectRef(pADOCon); // moved: letting go of the earlier one may call the host
        basLL80_.ErzeugeTabelle();
        return false; // never set to True: hosts know it so
    });
}

// Reports nothing: a failing step is skipped.
bool clsDruckManager::Terminate_Preview(std::int32_t pParentHwnd) {
    bool ergebnis = true;
    skippingErrors([&] {
        for (std::int16_t zeile = 0; zeile < basLL80_.Zeilenzahl(); ++zeile) {
            const auto druck = basLL80_.Zeile(zeile);
            if (druck->parentHwnd == pParentHwnd)
                ergebnis = basLL80_.fkt_Terminiere_Review(u"", String(druck->prevPath), *druck);
        }
    });
    return ergebnis;
}

bool clsDruckManager::fkt_Drucken(std::int16_t pPrintMode, double pFnr, const ObjectRef& pParArray,
                                  StringView pApppath, StringView pListenname, bool pDruckmitDruckerauswahl,
                                  std::int32_t pParentHwnd, std::int16_t pSelmoraFuer) {
    return guarded(state_, {kKlasse, u"fkt_Drucken"}, [&] {
        const Produktmodus produktmodus(state_, pSelmoraFuer);
        // Connection, company, row and names are the request's own: a host that prints, connects or closes windows
        // while foreign code runs or its messages are processed changes none of them.
        const auto connection = connection_;
        const auto firma = Lese_Allgemeine_Firmendaten(connection, pFnr);
        if (!firma)
            return false;
        const String listenname(pListenname);
        const auto listenPath = String(pApppath) + u"\\DB\\BerichteLLVT";
        const auto prevPath = pPrintMode == kVorschau ? listenPath + u"\\Preview" : listenPath;
        const auto zeile = fkt_Registriere_Druckauftrag(pPrintMode, listenname, pParentHwnd, prevPath);
        if (!zeile)
            return false;
        if (pPrintMode == kVorschau)
            required(zeile->druck().formular).LlPreviewSetTempPath(prevPath);
        for (const auto& launcher : kLauncher) {
            if (launcher.listenname == listenname)
                return Starte(launcher, *zeile,
                              {pPrintMode, pFnr, connection, firma, nullptr, listenPath, listenname,
                               pDruckmitDruckerauswahl, pParArray, prevPath, zeile->zeile()});
        }
        return false;
    });
}

bool clsDruckManager::Starte(const Launcher& launcher, LaufendeZeile& zeile, Druckauftrag auftrag) {
    return guarded(state_, {kKlasse, launcher.prozedur}, [&] {
        auftrag.pDrFormDll = zeile.druck().formular.get();
        return launcher.bericht({state_, zeile}, std::move(auftrag))->fkt_Drucken();
    });
}

ObjectRef clsDruckManager::Lese_Allgemeine_Firmendaten(const ObjectRef& connection, double pFnr) {
    const Procedure prozedur{kKlasse, u"Lese_Allgemeine_Firmendaten"};
    return guarded(state_, prozedur, [&]() -> ObjectRef {
        const auto objekt = state_.dataLibrary().create(clsZugFirmaAllg);
        firma_ = ObjectRef(objekt); // moved, as the connection is
        FirmaAllg firma(state_, objekt);
        if (!firma.Verbinde(connection)) {
            state_.report(prozedur, u"Die allgemeinen Firmendaten konnten nicht gelesen werden");
            return nullptr;
        }
        if (firma.LeseFirmaAllg(pFnr))
            return objekt;
        state_.report(prozedur, u"Die allgemeinen Firmendaten für die Firma " + textOf(pFnr, state_.locale()) +
                                    u" sind nicht vorhanden.");
        return nullptr;
    });
}

std::unique_ptr<LaufendeZeile> clsDruckManager::fkt_Registriere_Druckauftrag(std::int16_t pPrintMode,
                                                                             StringView pListenname,
                                                                             std::int32_t pParentHwnd,
                                                                             StringView pPrevPath) {
    // Reports under a blank name; the host's error log depends on it.
    return guarded(state_, {kKlasse, u" "}, [&] {
        auto zeile = WaehleZeile(pListenname, pParentHwnd, pPrevPath);
        auto& druck = zeile->druck();
        druck.formular = std::make_shared<clsDruckFormular>(state_, formFactory_);
        druck.formular->fkt_Starte_Form();

        druck.parentHwnd = pParentHwnd;
        druck.listenname = pListenname;
        druck.istPreview = pPrintMode == kVorschau;
        druck.prozess = {};
        druck.previewName = previewName(pListenname, state_.platform().now(), state_.locale());
        druck.prevPath = pPrevPath;
        return zeile;
    });
}

/// The window's row, its viewers ended, or else a new one. Among several rows of the window the last one is taken.
/// A row that a request of the window works on at this moment is left to it.
std::unique_ptr<LaufendeZeile> clsDruckManager::WaehleZeile(StringView pListenname, std::int32_t pParentHwnd,
                                                            StringView pPrevPath) {
    std::unique_ptr<LaufendeZeile> gewaehlt;
    // Rows that are added meanwhile belong to others.
    const auto anzahl = basLL80_.Zeilenzahl();
    for (std::int16_t zeile = 0; zeile < anzahl && zeile < basLL80_.Zeilenzahl(); ++zeile) {
        const auto druck = basLL80_.Zeile(zeile);
        if (druck->inArbeit || druck->parentHwnd != pParentHwnd)
            continue;
        gewaehlt = std::make_unique<LaufendeZeile>(basLL80_, zeile);
        basLL80_.fkt_Terminiere_Review(pListenname, pPrevPath, *druck);
    }
    if (!gewaehlt) {
        gewaehlt = std::make_unique<LaufendeZeile>(basLL80_, basLL80_.HaengeZeileAn());
        basLL80_.Loesche_Previewdateien(pListenname, pPrevPath, gewaehlt->druck());
    }
    return gewaehlt;
}

} // namespace kvtdruck
