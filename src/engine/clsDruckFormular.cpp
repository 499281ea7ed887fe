#include "engine/clsDruckFormular.h"

#include "dataaccess/member.h"
#include "module/error_rule.h"

#include <utility>

namespace kvtdruck {
namespace {

constexpr StringView kClass = u"clsDruckFormular";

/// The control's property that the form sets while it loads.
constexpr std::int32_t kPropertyWhileLoading = 3;

String withSeparator(StringView path) {
    return String(path) + u"\\";
}

} // namespace

/// A call of the form. The host may unload it meanwhile, so the form stays until all calls are over. Counting calls
/// takes a fraction of what sharing the form would.
class clsDruckFormular::Call {
  public:
    explicit Call(clsDruckFormular& adapter) : adapter_(adapter) { ++adapter.calls_; }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() {
        if (--adapter_.calls_ == 0 && !adapter_.unloaded_.empty())
            std::exchange(adapter_.unloaded_, {}); // a form may call the host while it goes
    }

    Form& form() const { return required(adapter_.frmDruck_); }

  private:
    clsDruckFormular& adapter_;
};

// Form

Variant clsDruckFormular::fkt_Starte_Form() {
    return guarded(state_, {kClass, u"fkt_Starte_Form"}, [&] {
        auto form = formFactory_.create();
        std::swap(form, frmDruck_); // an earlier form may call the host while it is unloaded
        unload(form);
        const Call call(*this);
        call.form().ll60().put(kPropertyWhileLoading, true);
        return true;
    });
}

void clsDruckFormular::fkt_Form_Hide() {
    skippingErrors([&] {
        const Call call(*this);
        Form& form = call.form();
        if (form.visible())
            form.hide();
    });
}

void clsDruckFormular::fkt_Form_Unload() {
    skippingErrors([&] { unload(frmDruck_); });
}

void clsDruckFormular::unload(std::unique_ptr<Form>& form) {
    if (calls_ > 0)
        unloaded_.emplace_back() = std::move(form);
    else
        form.reset();
}

// Calls

template <class Body>
std::int32_t clsDruckFormular::call(Body&& body) noexcept {
    std::int32_t rc = kEngineSuccess;
    skippingErrors([&] {
        const Call call(*this);
        rc = body(call.form());
    });
    return rc;
}

std::int32_t clsDruckFormular::call(Operation operation, std::initializer_list<Argument> arguments) noexcept {
    return call([&](Form& form) { return form.ll60().call(operation, arguments); });
}

std::int32_t clsDruckFormular::PrFehler(std::int32_t pRC, StringView pText) {
    if (pRC == kEnginePageFull || pRC == kEngineCancelled)
        return pRC;
    if (pRC == kEngineSuccess)
        return -1;
    skippingErrors([&] {
        state_.report({kClass, u"PrFehler"},
                      u"List & Label\r\nFehler " + decimal(pRC) + u" bei " + String(pText) +
                          u"\r\nDie Fehlercodes sind im L&L handbuch Seite 238 beschrieben.");
    });
    return 0;
}

std::int32_t clsDruckFormular::judge(std::int32_t rc, StringView text, StringView detail) noexcept {
    if (rc == kEngineSuccess)
        return PrFehler(rc, text);
    std::int32_t verdict = 0;
    skippingErrors([&] { verdict = PrFehler(rc, String(text) + String(detail)); });
    return verdict;
}

// Definitions

void clsDruckFormular::LlDefineVariableStart() {
    call(Operation::LlDefineVariableStart);
}

void clsDruckFormular::LlDefineFieldStart() {
    call(Operation::LlDefineFieldStart);
}

bool clsDruckFormular::LlDefineVariableExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) {
    const auto rc = call(Operation::LlDefineVariableExt, {pFeldname, pFeldinhalt, pFeldtyp});
    return judge(rc, u"LlDefineVariableExt ", pFeldname) != 0;
}

bool clsDruckFormular::LlDefineFieldExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) {
    const auto rc = call(Operation::LlDefineFieldExt, {pFeldname, pFeldinhalt, pFeldtyp});
    // The field operation reports under the layout operation's name; error logs know it so.
    return judge(rc, u"LlDefineLayout ", pFeldname) != 0;
}

bool clsDruckFormular::LlDefineLayout(const Variant& pTitel, std::int32_t pObjekttyp, StringView pObjektname) {
    String title;
    const auto rc = call([&](Form& form) {
        title = toText(pTitel, state_.locale());
        return form.ll60().call(Operation::LlDefineLayout, {form.hWnd(), title, pObjekttyp, pObjektname});
    });
    return judge(rc, u"LlDefineLayout ", title) != 0;
}

// Printing

std::int32_t clsDruckFormular::LlPrintWithBoxStart(std::int32_t pObjekttyp, StringView pObjektname,
                                                   std::int32_t pPrintMode, std::int32_t pBoxType,
                                                   StringView pTitel) {
    const auto rc = call([&](Form& form) {
        return form.ll60().call(Operation::LlPrintWithBoxStart,
                                {pObjekttyp, pObjektname, pPrintMode, pBoxType, form.hWnd(), pTitel});
    });
    return judge(rc, u"LlPrintWithBoxStart ", pObjektname);
}

std::int32_t clsDruckFormular::LlPrint() {
    return judge(call(Operation::LlPrint), u"LlPrint");
}

std::int32_t clsDruckFormular::LlPrintFields() {
    return judge(call(Operation::LlPrintFields), u"LlPrintFields");
}

std::int32_t clsDruckFormular::LlPrintFieldsEnd() {
    return judge(call(Operation::LlPrintFieldsEnd), u"LlPrintFieldsEnd");
}

std::int32_t clsDruckFormular::LlPrintEnd(std::int32_t pPages) {
    // The end of the job reports under the name of the end of the field list; error logs know it so.
    return judge(call(Operation::LlPrintEnd, {pPages}), u"LlPrintFieldsEnd");
}

std::int32_t clsDruckFormular::LlSetPrinterToDefault(std::int32_t pObjekttyp, StringView pObjektname) {
    const auto rc = call(Operation::LlSetPrinterToDefault, {pObjekttyp, pObjektname});
    return judge(rc, u"LlSetPrinterToDefault ", pObjektname);
}

std::int32_t clsDruckFormular::LlPrintSetBoxText(StringView pText, std::int32_t pFortschrittProzent) {
    return judge(call(Operation::LlPrintSetBoxText, {pText, pFortschrittProzent}), u"LlPrintSetBoxText");
}

std::int32_t clsDruckFormular::LlPrintOptionsDialog(StringView pText) {
    const auto rc = call([&](Form& form) {
        return form.ll60().call(Operation::LlPrintOptionsDialog, {form.hWnd(), pText});
    });
    return judge(rc, u"LlPrintOptionsDialog");
}

// The control has no member DrForm, so this chain fails and the job goes on: aborting through the adapter has no
// effect, and hosts have never seen another behaviour.
void clsDruckFormular::LlPrintAbort() {
    skippingErrors([&] {
        const auto& locale = state_.locale();
        const Call call(*this);
        const auto drForm = call.form().ll60().member(u"DrForm");
        const auto ll60 = Member(u"ll60", ValueType::Object).call(drForm, locale);
        Member(u"LlPrintAbort", ValueType::Variant).call(*ll60.as<ObjectRef>(), locale);
    });
}

void clsDruckFormular::PrintEnd() {
    call(Operation::PrintEnd);
}

// Preview

std::int32_t clsDruckFormular::LlPreviewDisplay(StringView pObjektname, StringView pPath) {
    const auto rc = call([&](Form& form) {
        return form.ll60().call(Operation::LlPreviewDisplay, {pObjektname, withSeparator(pPath), form.hWnd()});
    });
    return judge(rc, u"LlPreviewDisplay ", pObjektname);
}

std::int32_t clsDruckFormular::LlPreviewDeleteFiles(StringView pObjektname, StringView pPath) {
    const auto rc = call(Operation::LlPreviewDeleteFiles, {pObjektname, withSeparator(pPath)});
    return judge(rc, u"LlPreviewDeleteFiles ", pObjektname);
}

std::int32_t clsDruckFormular::LlPreviewSetTempPath(StringView pPath) {
    return judge(call(Operation::LlPreviewSetTempPath, {withSeparator(pPath)}), u"LlPreviewSetTempPath");
}

// Storage files, passed through without judgement

std::int32_t clsDruckFormular::LlStgsysDrawPage(std::int32_t pHSTG, std::int32_t pHDC, std::int32_t pHPRNDC,
                                                std::int32_t pLeft, std::int32_t pTop, std::int32_t pRight,
                                                std::int32_t pBottom, std::int32_t pIndex, std::int32_t pFit) {
    constexpr std::int32_t kNoPrinterQuestion = 0;
    return call(Operation::LlStgsysDrawPage,
                {pHSTG, pHDC, pHPRNDC, kNoPrinterQuestion, pLeft, pTop, pRight, pBottom, pIndex, pFit});
}

std::int32_t clsDruckFormular::LlStgsysStorageOpen(StringView pObjektname, StringView pPfad, bool pReadOnly,
                                                   bool pJob) {
    const auto longOf = [](bool truth) { return std::int32_t{truth ? -1 : 0}; };
    return call(Operation::LlStgsysStorageOpen, {pObjektname, pPfad, longOf(pReadOnly), longOf(pJob)});
}

void clsDruckFormular::LlStgsysStorageClose(std::int32_t pHSTG) {
    call(Operation::LlStgsysStorageClose, {pHSTG});
}

// Files

bool clsDruckFormular::FKT_Lösche_Druckerbeschreibung(StringView pPfad) {
    // Reports under the name of another procedure; the host's error log depends on it.
    return guarded(state_, {kClass, u"FKT_Setze_Rand_Formular"}, [&] {
        const auto files = state_.platform().createFileSystem();
        for (const StringView extension : {u".lsp", u".lsv"}) {
            const auto file = String(pPfad) + String(extension);
            if (files->exists(file))
                files->remove(file, true);
        }
        return true;
    });
}

} // namespace kvtdruck
