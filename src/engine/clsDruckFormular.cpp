#include "engine/clsDruckFormular.h"

#include "dataaccess/zugriff.h"
#include "module/error_rule.h"

namespace kvtdruck {
namespace {

constexpr StringView kKlasse = u"clsDruckFormular";

/// The control's property that the form sets while it loads.
constexpr std::int32_t kEigenschaftBeimLaden = 3;

String mitTrenner(StringView pfad) {
    return String(pfad) + u"\\";
}

} // namespace

// Form
// --------------------------------------------------------------------------------------------------------------

Variant clsDruckFormular::fkt_Starte_Form() {
    return guarded(state_, {kKlasse, u"fkt_Starte_Form"}, [&] {
        std::shared_ptr<Form> form = formFactory_.create();
        frmDruck_ = std::shared_ptr(form); // moved: an earlier form may call the host while it is unloaded
        form->ll60().put(kEigenschaftBeimLaden, true);
        return true;
    });
}

void clsDruckFormular::fkt_Form_Hide() {
    skippingErrors([&] {
        const auto form = frmDruck_;
        if (required(form).visible())
            form->hide();
    });
}

void clsDruckFormular::fkt_Form_Unload() {
    frmDruck_.reset();
}

// Calls
// -------------------------------------------------------------------------------------------------------------

template <class Aufruf>
std::int32_t clsDruckFormular::rufe(Aufruf&& aufruf) noexcept {
    std::int32_t rc = kEngineSuccess;
    skippingErrors([&] {
        const auto form = frmDruck_;
        rc = aufruf(required(form));
    });
    return rc;
}

std::int32_t clsDruckFormular::rufe(Operation operation, std::initializer_list<Argument> argumente) noexcept {
    return rufe([&](Form& form) { return form.ll60().call(operation, argumente); });
}

std::int32_t clsDruckFormular::PrFehler(std::int32_t pRC, StringView pText) {
    if (pRC == kEnginePageFull || pRC == kEngineCancelled)
        return pRC;
    if (pRC == kEngineSuccess)
        return -1;
    skippingErrors([&] {
        state_.report({kKlasse, u"PrFehler"},
                      u"List & Label\r\nFehler " + decimal(pRC) + u" bei " + String(pText) +
                          u"\r\nDie Fehlercodes sind im L&L handbuch Seite 238 beschrieben.");
    });
    return 0;
}

std::int32_t clsDruckFormular::beurteile(std::int32_t rc, StringView text, StringView zusatz) noexcept {
    if (rc == kEngineSuccess)
        return PrFehler(rc, text);
    std::int32_t urteil = 0;
    skippingErrors([&] { urteil = PrFehler(rc, String(text) + String(zusatz)); });
    return urteil;
}

// Definitions
// -------------------------------------------------------------------------------------------------------

void clsDruckFormular::LlDefineVariableStart() {
    rufe(Operation::LlDefineVariableStart);
}

void clsDruckFormular::LlDefineFieldStart() {
    rufe(Operation::LlDefineFieldStart);
}

bool clsDruckFormular::LlDefineVariableExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) {
    const auto rc = rufe(Operation::LlDefineVariableExt, {pFeldname, pFeldinhalt, pFeldtyp});
    return beurteile(rc, u"LlDefineVariableExt ", pFeldname) != 0;
}

bool clsDruckFormular::LlDefineFieldExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) {
    const auto rc = rufe(Operation::LlDefineFieldExt, {pFeldname, pFeldinhalt, pFeldtyp});
    // The field operation reports under the layout operation's name; error logs know it so.
    return beurteile(rc, u"LlDefineLayout ", pFeldname) != 0;
}

bool clsDruckFormular::LlDefineLayout(const Variant& pTitel, std::int32_t pObjekttyp, StringView pObjektname) {
    String titel;
    const auto rc = rufe([&](Form& form) {
        titel = toText(pTitel, state_.locale());
        return form.ll60().call(Operation::LlDefineLayout, {form.hWnd(), titel, pObjekttyp, pObjektname});
    });
    return beurteile(rc, u"LlDefineLayout ", titel) != 0;
}

// Printing
// ----------------------------------------------------------------------------------------------------------

std::int32_t clsDruckFormular::LlPrintWithBoxStart(std::int32_t pObjekttyp, StringView pObjektname,
                                                   std::int32_t pPrintMode, std::int32_t pBoxType,
                                                   StringView pTitel) {
    const auto rc = rufe([&](Form& form) {
        return form.ll60().call(Operation::LlPrintWithBoxStart,
                                {pObjekttyp, pObjektname, pPrintMode, pBoxType, form.hWnd(), pTitel});
    });
    return beurteile(rc, u"LlPrintWithBoxStart ", pObjektname);
}

std::int32_t clsDruckFormular::LlPrint() {
    return beurteile(rufe(Operation::LlPrint), u"LlPrint");
}

std::int32_t clsDruckFormular::LlPrintFields() {
    return beurteile(rufe(Operation::LlPrintFields), u"LlPrintFields");
}

std::int32_t clsDruckFormular::LlPrintFieldsEnd() {
    return beurteile(rufe(Operation::LlPrintFieldsEnd), u"LlPrintFieldsEnd");
}

std::int32_t clsDruckFormular::LlPrintEnd(std::int32_t pPages) {
    // The end of the job reports under the name of the end of the field list; error logs know it so.
    return beurteile(rufe(Operation::LlPrintEnd, {pPages}), u"LlPrintFieldsEnd");
}

std::int32_t clsDruckFormular::LlSetPrinterToDefault(std::int32_t pObjekttyp, StringView pObjektname) {
    const auto rc = rufe(Operation::LlSetPrinterToDefault, {pObjekttyp, pObjektname});
    return beurteile(rc, u"LlSetPrinterToDefault ", pObjektname);
}

std::int32_t clsDruckFormular::LlPrintSetBoxText(StringView pText, std::int32_t pFortschrittProzent) {
    return beurteile(rufe(Operation::LlPrintSetBoxText, {pText, pFortschrittProzent}), u"LlPrintSetBoxText");
}

std::int32_t clsDruckFormular::LlPrintOptionsDialog(StringView pText) {
    const auto rc = rufe([&](Form& form) {
        return form.ll60().call(Operation::LlPrintOptionsDialog, {form.hWnd(), pText});
    });
    return beurteile(rc, u"LlPrintOptionsDialog");
}

// The control has no member DrForm, so this chain fails and the job goes on: aborting through the adapter has no
// effect, and hosts have never seen another behaviour.
void clsDruckFormular::LlPrintAbort() {
    skippingErrors([&] {
        const auto& locale = state_.locale();
        const auto form = frmDruck_;
        const auto drForm = required(form).ll60().member(u"DrForm");
        const auto ll60 = Mitglied(u"ll60", ValueType::Object).rufe(drForm, locale);
        Mitglied(u"LlPrintAbort", ValueType::Variant).rufe(*ll60.as<ObjectRef>(), locale);
    });
}

void clsDruckFormular::PrintEnd() {
    rufe(Operation::PrintEnd);
}

// Preview
// -----------------------------------------------------------------------------------------------------------

std::int32_t clsDruckFormular::LlPreviewDisplay(StringView pObjektname, StringView pPath) {
    const auto rc = rufe([&](Form& form) {
        return form.ll60().call(Operation::LlPreviewDisplay, {pObjektname, mitTrenner(pPath), form.hWnd()});
    });
    return beurteile(rc, u"LlPreviewDisplay ", pObjektname);
}

std::int32_t clsDruckFormular::LlPreviewDeleteFiles(StringView pObjektname, StringView pPath) {
    const auto rc = rufe(Operation::LlPreviewDeleteFiles, {pObjektname, mitTrenner(pPath)});
    return beurteile(rc, u"LlPreviewDeleteFiles ", pObjektname);
}

std::int32_t clsDruckFormular::LlPreviewSetTempPath(StringView pPath) {
    return beurteile(rufe(Operation::LlPreviewSetTempPath, {mitTrenner(pPath)}), u"LlPreviewSetTempPath");
}

// Storage files, passed through without judgement
// -----------------------------------------------------------------------

std::int32_t clsDruckFormular::LlStgsysDrawPage(std::int32_t pHSTG, std::int32_t pHDC, std::int32_t pHPRNDC,
                                                std::int32_t pLeft, std::int32_t pTop, std::int32_t pRight,
                                                std::int32_t pBottom, std::int32_t pIndex, std::int32_t pFit) {
    constexpr std::int32_t kOhneDruckerfrage = 0;
    return rufe(Operation::LlStgsysDrawPage,
                {pHSTG, pHDC, pHPRNDC, kOhneDruckerfrage, pLeft, pTop, pRight, pBottom, pIndex, pFit});
}

std::int32_t clsDruckFormular::LlStgsysStorageOpen(StringView pObjektname, StringView pPfad, bool pReadOnly,
                                                   bool pJob) {
    const auto lang = [](bool wahr) { return std::int32_t{wahr ? -1 : 0}; };
    return rufe(Operation::LlStgsysStorageOpen, {pObjektname, pPfad, lang(pReadOnly), lang(pJob)});
}

void clsDruckFormular::LlStgsysStorageClose(std::int32_t pHSTG) {
    rufe(Operation::LlStgsysStorageClose, {pHSTG});
}

// Files
// -------------------------------------------------------------------------------------------------------------

bool clsDruckFormular::FKT_Lösche_Druckerbeschreibung(StringView pPfad) {
    // Reports under the name of another procedure; the host's error log depends on it.
    return guarded(state_, {kKlasse, u"FKT_Setze_Rand_Formular"}, [&] {
        const auto dateien = state_.platform().createFileSystem();
        for (const StringView endung : {u".lsp", u".lsv"}) {
            const auto datei = String(pPfad) + String(endung);
            if (dateien->exists(datei))
                dateien->remove(datei, true);
        }
        return true;
    });
}

} // namespace kvtdruck
