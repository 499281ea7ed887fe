// The component's engine adapter: the one place through which every report talks to the reporting engine.
#pragma once

#include "engine/DruckFormular.h"
#include "module/component_state.h"

#include <memory>
#include <vector>

namespace kvtdruck {

/// Forwards each operation to the control on its hidden form and has `PrFehler` judge the result. Every operation
/// but `FKT_DefiniereVariablen_AllgemeineFirmendaten`, `fkt_Starte_Form` and `FKT_Lösche_Druckerbeschreibung`
/// suppresses run-time errors: a call that fails (a missing form among them) counts as success. The adapter keeps
/// no state but the form, which it unloads when it is destroyed.
class clsDruckFormular final : public DruckFormular {
  public:
    clsDruckFormular(ComponentState& state, FormFactory& formFactory) : state_(state), formFactory_(formFactory) {}
    ~clsDruckFormular() override = default; // unloads the form

    bool FKT_DefiniereVariablen_AllgemeineFirmendaten(const ObjectRef& pZuDbFnrAllg,
                                                      StringView pListenUeberschrift) override;
    Variant fkt_Starte_Form() override;
    void fkt_Form_Hide() override;
    void fkt_Form_Unload() override;
    void LlDefineVariableStart() override;
    void LlDefineFieldStart() override;
    bool LlDefineVariableExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) override;
    bool LlDefineLayout(const Variant& pTitel, std::int32_t pObjekttyp, StringView pObjektname) override;
    bool LlDefineFieldExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) override;
    std::int32_t LlPrintWithBoxStart(std::int32_t pObjekttyp, StringView pObjektname, std::int32_t pPrintMode,
                                     std::int32_t pBoxType, StringView pTitel) override;
    std::int32_t LlPrint() override;
    std::int32_t LlPrintFields() override;
    std::int32_t LlPrintFieldsEnd() override;
    std::int32_t LlPrintEnd(std::int32_t pPages) override;
    std::int32_t LlPreviewDisplay(StringView pObjektname, StringView pPath) override;
    std::int32_t LlPreviewDeleteFiles(StringView pObjektname, StringView pPath) override;
    std::int32_t LlPreviewSetTempPath(StringView pPath) override;
    bool FKT_Lösche_Druckerbeschreibung(StringView pPfad) override;
    std::int32_t LlSetPrinterToDefault(std::int32_t pObjekttyp, StringView pObjektname) override;
    std::int32_t LlPrintSetBoxText(StringView pText, std::int32_t pFortschrittProzent) override;
    std::int32_t LlPrintOptionsDialog(StringView pText) override;
    std::int32_t LlStgsysDrawPage(std::int32_t pHSTG, std::int32_t pHDC, std::int32_t pHPRNDC, std::int32_t pLeft,
                                  std::int32_t pTop, std::int32_t pRight, std::int32_t pBottom, std::int32_t pIndex,
                                  std::int32_t pFit) override;
    std::int32_t LlStgsysStorageOpen(StringView pObjektname, StringView pPfad, bool pReadOnly, bool pJob) override;
    void LlStgsysStorageClose(std::int32_t pHSTG) override;
    void LlPrintAbort() override;
    std::int32_t PrFehler(std::int32_t pRC, StringView pText) override;
    void PrintEnd() override;

  private:
    /// The engine's result of `body`, which is given the form; 0 where the call fails.
    template <class Body>
    std::int32_t call(Body&& body) noexcept;
    std::int32_t call(Operation operation, std::initializer_list<Argument> arguments = {}) noexcept;
    /// `PrFehler` on `rc`; `detail` follows the operation's `text` in the message.
    std::int32_t judge(std::int32_t rc, StringView text, StringView detail) noexcept;
    /// The length of a text in the code is known when it is compiled, so that success costs nothing.
    template <std::size_t size>
    std::int32_t judge(std::int32_t rc, const char16_t (&text)[size], StringView detail = {}) noexcept {
        return judge(rc, StringView(text, size - 1), detail);
    }

    ComponentState& state_;
    FormFactory& formFactory_;
    /// Unloads the form; where a call is under way, when that is over.
    void unload(std::unique_ptr<Form>& form);
    class Call;

    std::unique_ptr<Form> frmDruck_;
    int calls_ = 0;                               ///< under way, one within the other
    std::vector<std::unique_ptr<Form>> unloaded_; ///< by the host, from within a call
};

} // namespace kvtdruck
