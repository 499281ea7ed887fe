// The engine adapter as the manager and the reports see it: the component's own, or a foreign one that a host
// passes to a report class directly.
#pragma once

#include "control/control.h"
#include "values/object.h"
#include "values/text.h"
#include "values/variant.h"

namespace kvtdruck {

/// Operations of the adapter, in the order of their slots. Boolean operations answer False after an error was
/// reported; judged operations answer what `PrFehler` makes of the engine's result: -1 success, -998 page full, -99
/// cancelled by the user, 0 an error that was reported.
class DruckFormular {
  public:
    DruckFormular() = default;
    DruckFormular(const DruckFormular&) = delete;
    DruckFormular& operator=(const DruckFormular&) = delete;
    virtual ~DruckFormular() = default;

    virtual bool FKT_DefiniereVariablen_AllgemeineFirmendaten(const ObjectRef& pZuDbFnrAllg,
                                                              StringView pListenUeberschrift) = 0;
    /// Creates and loads the hidden engine form; the result holds a Boolean.
    virtual Variant fkt_Starte_Form() = 0;
    virtual void fkt_Form_Hide() = 0;
    virtual void fkt_Form_Unload() = 0;
    virtual void LlDefineVariableStart() = 0;
    virtual void LlDefineFieldStart() = 0;
    virtual bool LlDefineVariableExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) = 0;
    virtual bool LlDefineLayout(const Variant& pTitel, std::int32_t pObjekttyp, StringView pObjektname) = 0;
    virtual bool LlDefineFieldExt(StringView pFeldname, StringView pFeldinhalt, std::int32_t pFeldtyp) = 0;
    virtual std::int32_t LlPrintWithBoxStart(std::int32_t pObjekttyp, StringView pObjektname,
                                             std::int32_t pPrintMode, std::int32_t pBoxType, StringView pTitel) = 0;
    virtual std::int32_t LlPrint() = 0;
    virtual std::int32_t LlPrintFields() = 0;
    virtual std::int32_t LlPrintFieldsEnd() = 0;
    virtual std::int32_t LlPrintEnd(std::int32_t pPages) = 0;
    virtual std::int32_t LlPreviewDisplay(StringView pObjektname, StringView pPath) = 0;
    virtual std::int32_t LlPreviewDeleteFiles(StringView pObjektname, StringView pPath) = 0;
    virtual std::int32_t LlPreviewSetTempPath(StringView pPath) = 0;
    /// Deletes the printer description that the engine keeps beside the layout file `pPfad` (a path without
    /// extension).
    virtual bool FKT_Lösche_Druckerbeschreibung(StringView pPfad) = 0;
    virtual std::int32_t LlSetPrinterToDefault(std::int32_t pObjekttyp, StringView pObjektname) = 0;
    virtual std::int32_t LlPrintSetBoxText(StringView pText, std::int32_t pFortschrittProzent) = 0;
    virtual std::int32_t LlPrintOptionsDialog(StringView pText) = 0;
    virtual std::int32_t LlStgsysDrawPage(std::int32_t pHSTG, std::int32_t pHDC, std::int32_t pHPRNDC,
                                          std::int32_t pLeft, std::int32_t pTop, std::int32_t pRight,
                                          std::int32_t pBottom, std::int32_t pIndex, std::int32_t pFit) = 0;
    /// Gives a storage handle.
    virtual std::int32_t LlStgsysStorageOpen(StringView pObjektname, StringView pPfad, bool pReadOnly,
                                             bool pJob) = 0;
    virtual void LlStgsysStorageClose(std::int32_t pHSTG) = 0;
    virtual void LlPrintAbort() = 0;
    virtual std::int32_t PrFehler(std::int32_t pRC, StringView pText) = 0;
    virtual void PrintEnd() = 0;
};

} // namespace kvtdruck
