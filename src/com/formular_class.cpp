#include "com/formular_class.h"

#include "com/automation_class.h"
#include "com/parameters.h"
#include "engine/clsDruckFormular.h"

#include <map>

namespace kvtdruck::com {
namespace {

/// How the component recognises an adapter of its own behind an interface pointer. Seen by nobody else.
// {B0C1C1A4-6D64-4E4B-9B6C-8E0B0E4B1D67}
const IID kOwnFormular = {0xB0C1C1A4, 0x6D64, 0x4E4B, {0x9B, 0x6C, 0x8E, 0x0B, 0x0E, 0x4B, 0x1D, 0x67}};

class FormularClass final : public AutomationClass<::clsDruckFormular, _clsDruckFormular> {
  public:
    DruckFormular& formular() { return formular_; }

    HRESULT STDMETHODCALLTYPE FKT_DefiniereVariablen_AllgemeineFirmendaten(IDispatch** pZuDbFnrAllg,
                                                                           BSTR* pListenUeberschrift,
                                                                           VARIANT_BOOL* result) override {
        return answer(result, [&] {
            return boolOf(
                formular_.FKT_DefiniereVariablen_AllgemeineFirmendaten(in(pZuDbFnrAllg), in(pListenUeberschrift)));
        });
    }
    HRESULT STDMETHODCALLTYPE fkt_Starte_Form(VARIANT* result) override {
        return answer(result, [&] { return variantOf(formular_.fkt_Starte_Form()); });
    }
    HRESULT STDMETHODCALLTYPE fkt_Form_Hide() override {
        return run([&] { formular_.fkt_Form_Hide(); });
    }
    HRESULT STDMETHODCALLTYPE fkt_Form_Unload() override {
        return run([&] { formular_.fkt_Form_Unload(); });
    }
    HRESULT STDMETHODCALLTYPE LlDefineVariableStart() override {
        return run([&] { formular_.LlDefineVariableStart(); });
    }
    HRESULT STDMETHODCALLTYPE LlDefineFieldStart() override {
        return run([&] { formular_.LlDefineFieldStart(); });
    }
    HRESULT STDMETHODCALLTYPE LlDefineVariableExt(BSTR* pFeldname, BSTR* pFeldindhalt, LONG* pFeldtyp,
                                                  VARIANT_BOOL* result) override {
        return answer(result, [&] {
            return boolOf(formular_.LlDefineVariableExt(in(pFeldname), in(pFeldindhalt), in(pFeldtyp)));
        });
    }
    HRESULT STDMETHODCALLTYPE LlDefineLayout(VARIANT* pTitel, LONG* pObjekttyp, BSTR* pObjektname,
                                             VARIANT_BOOL* result) override {
        return answer(
            result, [&] { return boolOf(formular_.LlDefineLayout(in(pTitel), in(pObjekttyp), in(pObjektname))); });
    }
    HRESULT STDMETHODCALLTYPE LlDefineFieldExt(BSTR* pFeldname, BSTR* pFeldindhalt, LONG* pFeldtyp,
                                               VARIANT_BOOL* result) override {
        return answer(result, [&] {
            return boolOf(formular_.LlDefineFieldExt(in(pFeldname), in(pFeldindhalt), in(pFeldtyp)));
        });
    }
    HRESULT STDMETHODCALLTYPE LlPrintWithBoxStart(LONG* pObjekttyp, BSTR* pObjektname, LONG* pPrintMode,
                                                  LONG* pBoxType, BSTR* pTitel, LONG* result) override {
        return answer(result, [&] {
            return LONG{formular_.LlPrintWithBoxStart(in(pObjekttyp), in(pObjektname), in(pPrintMode), in(pBoxType),
                                                      in(pTitel))};
        });
    }
    HRESULT STDMETHODCALLTYPE LlPrint(LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPrint()}; });
    }
    HRESULT STDMETHODCALLTYPE LlPrintFields(LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPrintFields()}; });
    }
    HRESULT STDMETHODCALLTYPE LlPrintFieldsEnd(LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPrintFieldsEnd()}; });
    }
    HRESULT STDMETHODCALLTYPE LlPrintEnd(LONG* pPages, LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPrintEnd(in(pPages))}; });
    }
    HRESULT STDMETHODCALLTYPE LlPreviewDisplay(BSTR* pObjektname, BSTR* pPath, LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPreviewDisplay(in(pObjektname), in(pPath))}; });
    }
    HRESULT STDMETHODCALLTYPE LlPreviewDeleteFiles(BSTR* pObjektname, BSTR* pPath, LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPreviewDeleteFiles(in(pObjektname), in(pPath))}; });
    }
    HRESULT STDMETHODCALLTYPE LlPreviewSetTempPath(BSTR* pPath, LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPreviewSetTempPath(in(pPath))}; });
    }
    HRESULT STDMETHODCALLTYPE FKT_Losche_Druckerbeschreibung(BSTR* pPfad, VARIANT_BOOL* result) override {
        return answer(result, [&] { return boolOf(formular_.FKT_Lösche_Druckerbeschreibung(in(pPfad))); });
    }
    HRESULT STDMETHODCALLTYPE LlSetPrinterToDefault(LONG* pObjekttyp, BSTR* pObjektname, LONG* result) override {
        return answer(result,
                      [&] { return LONG{formular_.LlSetPrinterToDefault(in(pObjekttyp), in(pObjektname))}; });
    }
    HRESULT STDMETHODCALLTYPE LlPrintSetBoxText(BSTR* pText, LONG* pFortschrittProzent, LONG* result) override {
        return answer(result,
                      [&] { return LONG{formular_.LlPrintSetBoxText(in(pText), in(pFortschrittProzent))}; });
    }
    HRESULT STDMETHODCALLTYPE LlPrintOptionsDialog(BSTR* pText, LONG* result) override {
        return answer(result, [&] { return LONG{formular_.LlPrintOptionsDialog(in(pText))}; });
    }
    HRESULT STDMETHODCALLTYPE LlStgsysDrawPage(LONG* pHSTG, LONG* pHDC, LONG* pHPRNDC, LONG* pLeft, LONG* pTop,
                                               LONG* pRight, LONG* pBottom, LONG* pIndex, LONG* pFit,
                                               LONG* result) override {
        return answer(result, [&] {
            return LONG{formular_.LlStgsysDrawPage(in(pHSTG), in(pHDC), in(pHPRNDC), in(pLeft), in(pTop),
                                                   in(pRight), in(pBottom), in(pIndex), in(pFit))};
        });
    }
    HRESULT STDMETHODCALLTYPE LlStgsysStorageOpen(BSTR* pObjektname, BSTR* pPfad, VARIANT_BOOL* pReadOnly,
                                                  VARIANT_BOOL* pJob, LONG* result) override {
        return answer(result, [&] {
            return LONG{formular_.LlStgsysStorageOpen(in(pObjektname), in(pPfad), truth(pReadOnly), truth(pJob))};
        });
    }
    HRESULT STDMETHODCALLTYPE LlStgsysStorageClose(LONG* pHSTG) override {
        return run([&] { formular_.LlStgsysStorageClose(in(pHSTG)); });
    }
    HRESULT STDMETHODCALLTYPE LlPrintAbort() override {
        return run([&] { formular_.LlPrintAbort(); });
    }
    HRESULT STDMETHODCALLTYPE PrFehler(LONG* pRC, BSTR* pText, LONG* result) override {
        return answer(result, [&] { return LONG{formular_.PrFehler(in(pRC), in(pText))}; });
    }
    HRESULT STDMETHODCALLTYPE PrintEnd() override {
        return run([&] { formular_.PrintEnd(); });
    }

  private:
    void* interfaceOf(REFIID iid) override {
        return iid == kOwnFormular ? this : AutomationClass::interfaceOf(iid);
    }

    clsDruckFormular formular_{apartment().state(), apartment().forms()};
};

/// An adapter of another maker. A failing call is a run-time error of the procedure that makes it.
class ForeignFormular final : public DruckFormular {
  public:
    ForeignFormular(IUnknown* object, ComponentState& state) : object_(object), state_(state) {}

    bool FKT_DefiniereVariablen_AllgemeineFirmendaten(const ObjectRef& pZuDbFnrAllg,
                                                      StringView pListenUeberschrift) override {
        return truth(u"FKT_DefiniereVariablen_AllgemeineFirmendaten", {pZuDbFnrAllg, String(pListenUeberschrift)});
    }
    Variant fkt_Starte_Form() override { return call(u"fkt_Starte_Form"); }
    void fkt_Form_Hide() override { call(u"fkt_Form_Hide"); }
    void fkt_Form_Unload() override { call(u"fkt_Form_Unload"); }
    void LlDefineVariableStart() override { call(u"LlDefineVariableStart"); }
    void LlDefineFieldStart() override { call(u"LlDefineFieldStart"); }
    bool LlDefineVariableExt(StringView pFeldname, StringView pFeldindhalt, std::int32_t pFeldtyp) override {
        return truth(u"LlDefineVariableExt", {String(pFeldname), String(pFeldindhalt), pFeldtyp});
    }
    bool LlDefineLayout(const Variant& pTitel, std::int32_t pObjekttyp, StringView pObjektname) override {
        return truth(u"LlDefineLayout", {pTitel, pObjekttyp, String(pObjektname)});
    }
    bool LlDefineFieldExt(StringView pFeldname, StringView pFeldindhalt, std::int32_t pFeldtyp) override {
        return truth(u"LlDefineFieldExt", {String(pFeldname), String(pFeldindhalt), pFeldtyp});
    }
    std::int32_t LlPrintWithBoxStart(std::int32_t pObjekttyp, StringView pObjektname, std::int32_t pPrintMode,
                                     std::int32_t pBoxType, StringView pTitel) override {
        return number(u"LlPrintWithBoxStart",
                      {pObjekttyp, String(pObjektname), pPrintMode, pBoxType, String(pTitel)});
    }
    std::int32_t LlPrint() override { return number(u"LlPrint"); }
    std::int32_t LlPrintFields() override { return number(u"LlPrintFields"); }
    std::int32_t LlPrintFieldsEnd() override { return number(u"LlPrintFieldsEnd"); }
    std::int32_t LlPrintEnd(std::int32_t pPages) override { return number(u"LlPrintEnd", {pPages}); }
    std::int32_t LlPreviewDisplay(StringView pObjektname, StringView pPath) override {
        return number(u"LlPreviewDisplay", {String(pObjektname), String(pPath)});
    }
    std::int32_t LlPreviewDeleteFiles(StringView pObjektname, StringView pPath) override {
        return number(u"LlPreviewDeleteFiles", {String(pObjektname), String(pPath)});
    }
    std::int32_t LlPreviewSetTempPath(StringView pPath) override {
        return number(u"LlPreviewSetTempPath", {String(pPath)});
    }
    bool FKT_Lösche_Druckerbeschreibung(StringView pPfad) override {
        return truth(u"FKT_Lösche_Druckerbeschreibung", {String(pPfad)});
    }
    std::int32_t LlSetPrinterToDefault(std::int32_t pObjekttyp, StringView pObjektname) override {
        return number(u"LlSetPrinterToDefault", {pObjekttyp, String(pObjektname)});
    }
    std::int32_t LlPrintSetBoxText(StringView pText, std::int32_t pFortschrittProzent) override {
        return number(u"LlPrintSetBoxText", {String(pText), pFortschrittProzent});
    }
    std::int32_t LlPrintOptionsDialog(StringView pText) override {
        return number(u"LlPrintOptionsDialog", {String(pText)});
    }
    std::int32_t LlStgsysDrawPage(std::int32_t pHSTG, std::int32_t pHDC, std::int32_t pHPRNDC, std::int32_t pLeft,
                                  std::int32_t pTop, std::int32_t pRight, std::int32_t pBottom, std::int32_t pIndex,
                                  std::int32_t pFit) override {
        return number(u"LlStgsysDrawPage", {pHSTG, pHDC, pHPRNDC, pLeft, pTop, pRight, pBottom, pIndex, pFit});
    }
    std::int32_t LlStgsysStorageOpen(StringView pObjektname, StringView pPfad, bool pReadOnly, bool pJob) override {
        return number(u"LlStgsysStorageOpen", {String(pObjektname), String(pPfad), pReadOnly, pJob});
    }
    void LlStgsysStorageClose(std::int32_t pHSTG) override { call(u"LlStgsysStorageClose", {pHSTG}); }
    void LlPrintAbort() override { call(u"LlPrintAbort"); }
    std::int32_t PrFehler(std::int32_t pRC, StringView pText) override {
        return number(u"PrFehler", {pRC, String(pText)});
    }
    void PrintEnd() override { call(u"PrintEnd"); }

  private:
    bool truth(StringView operation, std::initializer_list<Variant> arguments) {
        return toBoolean(call(operation, arguments), state_.locale());
    }
    std::int32_t number(StringView operation, std::initializer_list<Variant> arguments = {}) {
        return toLong(call(operation, arguments), state_.locale());
    }
    Variant call(StringView operation, std::initializer_list<Variant> arguments = {}) {
        const auto member = ids_.try_emplace(operation, DISPID_UNKNOWN).first;
        if (member->second == DISPID_UNKNOWN)
            member->second = object_.idOf(operation);
        return object_.call(member->second, std::span(arguments.begin(), arguments.size()));
    }

    ForeignObject object_;
    ComponentState& state_;
    std::map<StringView, DISPID> ids_;
};

} // namespace

IUnknown* createFormular() {
    return static_cast<IDispatch*>(new FormularClass);
}

std::shared_ptr<DruckFormular> formularOf(const ComPtr<_clsDruckFormular>& object, ComponentState& state) {
    if (!object)
        return nullptr;
    void* own = nullptr;
    if (FAILED(object->QueryInterface(kOwnFormular, &own)))
        return std::make_shared<ForeignFormular>(object.get(), state);
    const std::shared_ptr<FormularClass> shared(static_cast<FormularClass*>(own),
                                                [](FormularClass* formular) { formular->Release(); });
    return {shared, &shared->formular()};
}

} // namespace kvtdruck::com
