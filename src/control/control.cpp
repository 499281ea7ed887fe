#include "control/control.h"

namespace kvtdruck {

StringView nameOf(Operation operation) {
    switch (operation) {
    case Operation::LlDefineFieldExt:
        return u"LlDefineFieldExt";
    case Operation::LlDefineVariableExt:
        return u"LlDefineVariableExt";
    case Operation::LlDefineFieldStart:
        return u"LlDefineFieldStart";
    case Operation::LlDefineVariableStart:
        return u"LlDefineVariableStart";
    case Operation::LlDefineLayout:
        return u"LlDefineLayout";
    case Operation::LlPrint:
        return u"LlPrint";
    case Operation::LlPrintFields:
        return u"LlPrintFields";
    case Operation::LlPrintFieldsEnd:
        return u"LlPrintFieldsEnd";
    case Operation::LlPrintEnd:
        return u"LlPrintEnd";
    case Operation::LlPreviewSetTempPath:
        return u"LlPreviewSetTempPath";
    case Operation::LlPreviewDeleteFiles:
        return u"LlPreviewDeleteFiles";
    case Operation::LlPreviewDisplay:
        return u"LlPreviewDisplay";
    case Operation::LlPrintSetBoxText:
        return u"LlPrintSetBoxText";
    case Operation::LlPrintWithBoxStart:
        return u"LlPrintWithBoxStart";
    case Operation::LlPrintOptionsDialog:
        return u"LlPrintOptionsDialog";
    case Operation::LlSetPrinterToDefault:
        return u"LlSetPrinterToDefault";
    case Operation::LlStgsysStorageOpen:
        return u"LlStgsysStorageOpen";
    case Operation::LlStgsysStorageClose:
        return u"LlStgsysStorageClose";
    case Operation::LlStgsysDrawPage:
        return u"LlStgsysDrawPage";
    case Operation::PrintEnd:
        return u"PrintEnd";
    }
    return {};
}

} // namespace kvtdruck
