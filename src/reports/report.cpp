#include "reports/report.h"

#include "values/conversion.h"
#include "values/overloaded.h"

#include <utility>

namespace kvtdruck {
namespace {

/// Print modes of the host.
enum Printmodus : std::int16_t { kDrucken = 0, kVorschau = 1, kEntwerfen = 2 };

// Constants of the engine.
constexpr std::int32_t kListenprojekt = 2;
constexpr std::int32_t kFortschrittsbox = 2;
constexpr std::int32_t kModusDrucken = 256;
constexpr std::int32_t kModusVorschau = 512;

} // namespace

Bericht::Bericht(const Berichtsumgebung& umgebung, Druckauftrag auftrag, StringView klasse, StringView titel)
    : umgebung_(umgebung), auftrag_(std::move(auftrag)), klasse_(klasse), titel_(titel),
      firma_(umgebung.state, auftrag_.pZuDbFnrAllg), parray_(umgebung.state, auftrag_.parray),
      layoutdatei_(auftrag_.pListenPath + u"\\" + auftrag_.pListenname) {}

bool Bericht::fkt_Drucken() {
    return Prozedurrumpf(u"fkt_Drucken", [this] { return Ablauf(); });
}

// The frame
// ---------------------------------------------------------------------------------------------------------

bool Bericht::Ablauf() {
    WaehleTitel();
    waehrung_ = firma_.text(u"Waehrung");
    // The stored printer description goes, so that the engine's defaults apply.
    if (!Lese() || !adapter().FKT_Lösche_Druckerbeschreibung(layoutdatei_))
        return false;
    BeginneDefinitionen();
    if (!adapter().FKT_DefiniereVariablen_AllgemeineFirmendaten(firma_.objekt(), titel_) || !DefiniereAlles())
        return false;
    adapter().fkt_Form_Hide();
    if (!FuehreAus())
        return false;
    if (druckmodus_ == kModusVorschau)
        umgebung_.vorschau.fkt_Aktiviere_Preview(auftrag_.pListenname, auftrag_.pPrevPath,
                                                 auftrag_.pAktind_ArrAllPrints);
    return true;
}

bool Bericht::FuehreAus() {
    switch (auftrag_.pPrintMode) {
    case kDrucken:
        druckmodus_ = kModusDrucken;
        return Drucke();
    case kVorschau:
        druckmodus_ = kModusVorschau;
        return Drucke();
    case kEntwerfen:
        return adapter().LlDefineLayout(titel_, kListenprojekt, layoutdatei_);
    default:
        return true; // nothing to print is no failure
    }
}

bool Bericht::Drucke() {
    if (!BeginneDruck() || !DefiniereVorErsterSeite())
        return false;
    adapter().LlPrint();
    return DruckeSaetze() && BeendeDruck();
}

bool Bericht::BeginneDruck() {
    if (adapter().LlSetPrinterToDefault(kListenprojekt, layoutdatei_) == 0)
        return false;
    if (adapter().LlPrintWithBoxStart(kListenprojekt, layoutdatei_, druckmodus_, kFortschrittsbox, layoutdatei_) ==
        0)
        return false;
    if (!auftrag_.pDruckmitDruckerauswahl)
        return true;
    const auto antwort = adapter().LlPrintOptionsDialog(auftrag_.pListenname);
    return antwort != kEngineCancelled && antwort != 0;
}

bool Bericht::BeendeDruck() {
    std::int32_t ende = 0;
    do
        ende = adapter().LlPrintFieldsEnd();
    while (ende == kEnginePageFull);
    if (ende == kEngineCancelled) {
        adapter().PrintEnd();
        return false;
    }
    adapter().LlPrintEnd(0);
    return true;
}

void Bericht::BeginneDefinitionen() {
    adapter().LlDefineVariableStart();
}

// Pieces
// ------------------------------------------------------------------------------------------------------------

bool Bericht::Prozedurrumpf(StringView name, const std::function<bool()>& rumpf) {
    return guarded(state(), {klasse_, name}, rumpf);
}

void Bericht::Melde(StringView prozedur, StringView text) {
    state().report({klasse_, prozedur}, text);
}

void Bericht::Definiere(Ziel ziel, StringView name, StringView inhalt, std::int32_t typ) {
    (adapter().*ziel)(name, inhalt, typ);
}

void Bericht::Definiere(Ziel ziel, GebundeneTabelle& tabelle, const Satz& satz) {
    const auto& zeilen = tabelle.zeilen();
    for (std::size_t i = 0; i < zeilen.size(); ++i)
        Definiere(ziel, zeilen[i].name, Inhalt(zeilen[i].quelle, tabelle.getter(i), satz), zeilen[i].typ);
}

String Bericht::Inhalt(const Quelle& quelle, Mitglied& getter, const Satz& satz) {
    const auto abgerufen = [&] { return required(satz.leser).wert(getter); };
    return std::visit(
        Overloaded{
            [&](const Firmennummer&) { return textOf(auftrag_.pFnr, locale()); },
            [&](const Waehrung&) { return waehrung_; },
            [&](const Festtext& fest) { return fest.text; },
            [&](const Abruf&) { return toText(abgerufen(), locale()); },
            [&](const Datumsabruf&) { return fkt_Datum_Text(abgerufen(), locale()); },
            [&](const Zelle& zelle) { return parray_.text(zelle.zeile.value_or(satz.zeile), zelle.spalte); },
            [&](const Errechnet& errechnet) { return errechnet.text(*this); },
        },
        quelle);
}

void Bericht::ZeigeFortschritt() {
    if (fortschritt_ > 100)
        fortschritt_ = 0;
    ++fortschritt_;
    adapter().LlPrintSetBoxText(auftrag_.pListenname, fortschritt_);
}

void Bericht::DruckeZeile() {
    while (adapter().LlPrintFields() == kEnginePageFull)
        adapter().LlPrint();
}

} // namespace kvtdruck
