// The component's interfaces as a compiled host knows them: written down here once more, slot by slot, so that a
// change of the component's own declarations shows.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <array>

namespace kvtdruck::test {

struct ClassIdentifiers {
    const wchar_t* name;
    CLSID clsid;
    IID iid;
};

// clang-format off
inline constexpr std::array<ClassIdentifiers, 20> kComponentClasses = {{
    {L"clsDruckManager",
     {0x1DC24EED, 0x4FD7, 0x486C, {0xA4, 0xC2, 0x75, 0xD2, 0x99, 0x02, 0xDB, 0xC0}},
     {0x47CF54C2, 0x7896, 0x4875, {0x9C, 0x68, 0x05, 0xD7, 0x98, 0x96, 0x01, 0xEC}}},
    {L"clsDruckFormular",
     {0xD2B981A8, 0x4C4B, 0x4F54, {0xB7, 0xCC, 0xFD, 0xFA, 0xF5, 0xA8, 0x1B, 0x10}},
     {0xD6B5D836, 0xC3E7, 0x4B91, {0x8D, 0xA0, 0x3D, 0xF5, 0xE9, 0xA6, 0xDB, 0xE7}}},
    {L"clsDruck_Umsatz",
     {0xDE7FFE40, 0xFE92, 0x46EF, {0xBA, 0x48, 0x41, 0x16, 0x35, 0xFA, 0xA5, 0x7C}},
     {0x536ABEF1, 0x6763, 0x4BED, {0x94, 0xFA, 0x6D, 0x97, 0x65, 0x8D, 0x2E, 0xD6}}},
    {L"clsDRuck_MitarbeiterUebersicht",
     {0x303DBEC9, 0xB5E4, 0x4EBE, {0xBD, 0xF1, 0x79, 0x5D, 0x6C, 0xEA, 0x66, 0x09}},
     {0xEE24DB9C, 0xCAE5, 0x4500, {0xB5, 0x38, 0x8E, 0xCC, 0x76, 0x6D, 0x61, 0x5C}}},
    {L"clsDruck_Firma",
     {0xCC87C908, 0x828D, 0x40B1, {0xA4, 0x04, 0x9F, 0xA7, 0x86, 0x82, 0xB5, 0x08}},
     {0x34ABF39C, 0x9CA8, 0x4968, {0xA7, 0x39, 0x5B, 0x35, 0x17, 0xAF, 0x17, 0xBB}}},
    {L"clsDruck_GemeinK",
     {0x5BF9DB62, 0x4C55, 0x4418, {0x94, 0x22, 0xF2, 0xB2, 0x10, 0x70, 0x95, 0x7E}},
     {0xAC5C0E38, 0x0A3D, 0x408E, {0x9F, 0x85, 0x1B, 0xFD, 0xB4, 0x4C, 0xEB, 0x8F}}},
    {L"clsDruck_MitarbeiterKosten",
     {0xEBB782F4, 0xF417, 0x47D0, {0x81, 0x25, 0x1E, 0x65, 0x7E, 0x76, 0x6B, 0xAE}},
     {0x1047F29F, 0x01A0, 0x40BA, {0x91, 0x96, 0xF5, 0x36, 0x4B, 0x8A, 0x37, 0xD6}}},
    {L"clsDruck_MitarbeiterZeiten",
     {0xF8AA7CA1, 0xE7D2, 0x4553, {0x80, 0x0C, 0xA8, 0x42, 0x7E, 0x30, 0x01, 0x25}},
     {0x79F9C5A5, 0x55B3, 0x481A, {0x85, 0xDC, 0x41, 0x32, 0x02, 0x50, 0x17, 0xE1}}},
    {L"clsDruck_NeutralA",
     {0x2916B352, 0x360F, 0x4654, {0xBA, 0xB0, 0x84, 0x3B, 0xB2, 0xBC, 0x55, 0x9A}},
     {0x08A08693, 0x5EF0, 0x45DE, {0xA8, 0x8E, 0xB4, 0xEF, 0xBF, 0x14, 0xC0, 0x9A}}},
    {L"clsDruck_MitarbeiterStKosten",
     {0xE2C4B33C, 0xA0F0, 0x4FB6, {0x97, 0x2A, 0xA5, 0x15, 0xB3, 0x48, 0xFC, 0x46}},
     {0x31BAEDA8, 0xA04B, 0x4DF1, {0x87, 0x9C, 0x6C, 0x62, 0xE7, 0x30, 0x15, 0x23}}},
    {L"clsDruck_MitarbeiterStZeiten",
     {0x644CB0BA, 0x4339, 0x4C68, {0x94, 0x2C, 0xD9, 0xB9, 0x7F, 0x3F, 0xAD, 0x71}},
     {0xD29748F4, 0x2046, 0x4731, {0x90, 0xC9, 0x1D, 0x7E, 0x23, 0x38, 0xFC, 0x27}}},
    {L"clsDruck_KalkKosten",
     {0x45BA831E, 0x3498, 0x4D2C, {0x92, 0x5D, 0x40, 0x61, 0x62, 0x32, 0x19, 0x5D}},
     {0x58AF3D70, 0x11A1, 0x4AEE, {0xA5, 0xDF, 0x41, 0x9A, 0x78, 0x89, 0x77, 0x64}}},
    {L"clsDruck_MatUeber",
     {0x01FD5EF2, 0x1152, 0x4960, {0xAF, 0x7A, 0x76, 0xE9, 0x84, 0x4F, 0x6F, 0x3A}},
     {0x4FB69AD5, 0x3F54, 0x4570, {0xAF, 0xFD, 0x69, 0x43, 0xF9, 0x2F, 0x94, 0x53}}},
    {L"clsDruck_Bilanz",
     {0xC549B9C9, 0xDD4E, 0x4044, {0x8D, 0x5E, 0x2D, 0x65, 0x84, 0xB9, 0x68, 0x84}},
     {0x59A54199, 0x3D69, 0x4798, {0xB9, 0x9E, 0x11, 0x49, 0x59, 0x0F, 0x31, 0x93}}},
    {L"clsDruck_BsEMa",
     {0x32F8459E, 0x67F3, 0x446B, {0xBF, 0x91, 0x25, 0x15, 0x50, 0x4F, 0x0B, 0x1E}},
     {0x37E326F9, 0x97A2, 0x41F7, {0x94, 0xC3, 0xC8, 0xC4, 0x43, 0xED, 0xEB, 0xCB}}},
    {L"clsDruck_BsEStd",
     {0x7A642CDA, 0xD5C7, 0x4F03, {0xAB, 0x38, 0xB1, 0x52, 0xCB, 0xCF, 0xCF, 0xB8}},
     {0x5B69E00B, 0xC369, 0x4118, {0xA5, 0x9B, 0x96, 0x93, 0x7E, 0xD3, 0x7C, 0x3B}}},
    {L"clsDruck_BsEGes",
     {0x1D995FF4, 0x8FB8, 0x4672, {0x96, 0xF0, 0x05, 0x32, 0x6E, 0xB8, 0xA5, 0xBB}},
     {0xC37E6C1C, 0x88F8, 0x4B4C, {0x88, 0x4E, 0xEA, 0xA5, 0x09, 0xE5, 0xFD, 0xB6}}},
    {L"clsDruck_Kalkwerte",
     {0x515C7B36, 0x4FA0, 0x4CE2, {0x8D, 0x3A, 0x40, 0x33, 0xB6, 0xDE, 0x92, 0xF5}},
     {0x732CC509, 0xC3B9, 0x4307, {0xB4, 0x43, 0x1D, 0x18, 0x61, 0x12, 0xDB, 0xAC}}},
    {L"clsDruck_WasWenn",
     {0xF4A9FAD1, 0x89BB, 0x4D90, {0xB7, 0x2F, 0xEC, 0x81, 0xB5, 0x1C, 0x31, 0xEF}},
     {0xD7302BE7, 0xCE4A, 0x4BAF, {0x9B, 0x8D, 0xE3, 0x31, 0xEA, 0xB0, 0x25, 0x73}}},
    {L"clsDruck_UmsatzHW",
     {0x45EA4511, 0xF3E3, 0x4D43, {0x95, 0xAB, 0xEF, 0xA4, 0x76, 0x78, 0x2A, 0x8F}},
     {0xD635DC7E, 0xEB0A, 0x4E5B, {0xAF, 0xBC, 0x17, 0x7E, 0x5A, 0x63, 0x09, 0x86}}},
}};
// clang-format on

inline constexpr const ClassIdentifiers& kManagerClass = kComponentClasses[0];
inline constexpr const ClassIdentifiers& kFormularClass = kComponentClasses[1];
inline constexpr const ClassIdentifiers& kUmsatzClass = kComponentClasses[2];

struct DruckManager : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE fkt_Init(IDispatch** pADOCon, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE Terminate_Preview(long* pParentHwnd, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE fkt_Drucken(short* pPrintMode, double* pFnr, IDispatch** pParArray,
                                                  BSTR* pApppath, BSTR* pListenname,
                                                  VARIANT_BOOL* pDruckmitDruckerauswahl, long* pParentHwnd,
                                                  short* pSelmoraFuer, VARIANT_BOOL* result) = 0;
};

struct DruckFormular : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE FKT_DefiniereVariablen_AllgemeineFirmendaten(IDispatch** pZuDbFnrAllg,
                                                                                   BSTR* pListenUeberschrift,
                                                                                   VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE fkt_Starte_Form(VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE fkt_Form_Hide() = 0;
    virtual HRESULT STDMETHODCALLTYPE fkt_Form_Unload() = 0;
    virtual HRESULT STDMETHODCALLTYPE LlDefineVariableStart() = 0;
    virtual HRESULT STDMETHODCALLTYPE LlDefineFieldStart() = 0;
    virtual HRESULT STDMETHODCALLTYPE LlDefineVariableExt(BSTR* pFeldname, BSTR* pFeldindhalt, long* pFeldtyp,
                                                          VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlDefineLayout(VARIANT* pTitel, long* pObjekttyp, BSTR* pObjektname,
                                                     VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlDefineFieldExt(BSTR* pFeldname, BSTR* pFeldindhalt, long* pFeldtyp,
                                                       VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrintWithBoxStart(long* pObjekttyp, BSTR* pObjektname, long* pPrintMode,
                                                          long* pBoxType, BSTR* pTitel, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrint(long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrintFields(long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrintFieldsEnd(long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrintEnd(long* pPages, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPreviewDisplay(BSTR* pObjektname, BSTR* pPath, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPreviewDeleteFiles(BSTR* pObjektname, BSTR* pPath, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPreviewSetTempPath(BSTR* pPath, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE FKT_Loesche_Druckerbeschreibung(BSTR* pPfad, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlSetPrinterToDefault(long* pObjekttyp, BSTR* pObjektname, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrintSetBoxText(BSTR* pText, long* pFortschrittProzent, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrintOptionsDialog(BSTR* pText, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlStgsysDrawPage(long* pHSTG, long* pHDC, long* pHPRNDC, long* pLeft,
                                                       long* pTop, long* pRight, long* pBottom, long* pIndex,
                                                       long* pFit, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlStgsysStorageOpen(BSTR* pObjektname, BSTR* pPfad, VARIANT_BOOL* pReadOnly,
                                                          VARIANT_BOOL* pJob, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlStgsysStorageClose(long* pHSTG) = 0;
    virtual HRESULT STDMETHODCALLTYPE LlPrintAbort() = 0;
    virtual HRESULT STDMETHODCALLTYPE PrFehler(long* pRC, BSTR* pText, long* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE PrintEnd() = 0;
};

/// What all report classes offer.
struct Report : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE fkt_Drucken(short* pPrintMode, double* pFnr, IDispatch** pADOCon,
                                                  IDispatch** pZuDbFnrAllg, DruckFormular** pDrFormDll,
                                                  BSTR* pListenPath, BSTR* pListenname,
                                                  VARIANT_BOOL* pDruckmitDruckerauswahl, IDispatch** parray,
                                                  BSTR* pPrevPath, short* pAktind_ArrAllPrints,
                                                  VARIANT_BOOL* result) = 0;
};

} // namespace kvtdruck::test
