#include "com/classes.h"

#include "KDVTDruck_idl.h"
#include "com/automation_class.h"
#include "com/formular_class.h"
#include "com/parameters.h"
#include "manager/clsDruckManager.h"
#include "reports/report_classes.h"

namespace kvtdruck::com {
namespace {

class ManagerClass final : public AutomationClass<::clsDruckManager, _clsDruckManager> {
  public:
    HRESULT STDMETHODCALLTYPE fkt_Init(IDispatch** pADOCon, VARIANT_BOOL* result) override {
        return answer(result, [&] { return boolOf(manager_.fkt_Init(in(pADOCon))); });
    }

    HRESULT STDMETHODCALLTYPE Terminate_Preview(LONG* pParentHwnd, VARIANT_BOOL* result) override {
        return answer(result, [&] { return boolOf(manager_.Terminate_Preview(in(pParentHwnd))); });
    }

    HRESULT STDMETHODCALLTYPE fkt_Drucken(short* pPrintMode, double* pFnr, IDispatch** pParArray, BSTR* pApppath,
                                          BSTR* pListenname, VARIANT_BOOL* pDruckmitDruckerauswahl,
                                          LONG* pParentHwnd, short* pSelmoraFuer, VARIANT_BOOL* result) override {
        return answer(result, [&] {
            return boolOf(manager_.fkt_Drucken(in(pPrintMode), in(pFnr), in(pParArray), in(pApppath),
                                               in(pListenname), truth(pDruckmitDruckerauswahl), in(pParentHwnd),
                                               in(pSelmoraFuer)));
        });
    }

  private:
    clsDruckManager manager_{apartment().state(), apartment().jobTable(), apartment().forms()};
};

/// One of the eighteen report classes. The report object itself lives for one request.
template <class CoClass, class Interface, ReportFactory* createReport>
class ReportClass final : public AutomationClass<CoClass, Interface> {
  public:
    HRESULT STDMETHODCALLTYPE fkt_Drucken(short* pPrintMode, double* pFnr, IDispatch** pADOCon,
                                          IDispatch** pZuDbFnrAllg, _clsDruckFormular** pDrFormDll,
                                          BSTR* pListenPath, BSTR* pListenname,
                                          VARIANT_BOOL* pDruckmitDruckerauswahl, IDispatch** parray,
                                          BSTR* pPrevPath, short* pAktind_ArrAllPrints,
                                          VARIANT_BOOL* result) override {
        return this->answer(result, [&] {
            auto& state = this->apartment().state();
            PrintRequest request{in(pPrintMode),
                                 in(pFnr),
                                 in(pADOCon),
                                 in(pZuDbFnrAllg),
                                 nullptr,
                                 in(pListenPath),
                                 in(pListenname),
                                 truth(pDruckmitDruckerauswahl),
                                 in(parray),
                                 in(pPrevPath),
                                 in(pAktind_ArrAllPrints)};
            const auto adapter = formularOf(in(pDrFormDll), state);
            request.pDrFormDll = adapter.get();
            return boolOf(createReport({state, this->apartment().jobTable()}, std::move(request))->fkt_Drucken());
        });
    }
};

template <class Class>
IUnknown* create() {
    return static_cast<IDispatch*>(new Class);
}

#define KVT_REPORT(Class)                                                                                          \
    { L## #Class, __uuidof(::Class), create<ReportClass<::Class, _##Class, new_##Class>> }

const CoClass kClasses[] = {
    {L"clsDruckManager", __uuidof(::clsDruckManager), create<ManagerClass>},
    {L"clsDruckFormular", __uuidof(::clsDruckFormular), createFormular},
    KVT_REPORT(clsDruck_Umsatz),
    KVT_REPORT(clsDRuck_MitarbeiterUebersicht),
    KVT_REPORT(clsDruck_Firma),
    KVT_REPORT(clsDruck_GemeinK),
    KVT_REPORT(clsDruck_MitarbeiterKosten),
    KVT_REPORT(clsDruck_MitarbeiterZeiten),
    KVT_REPORT(clsDruck_NeutralA),
    KVT_REPORT(clsDruck_MitarbeiterStKosten),
    KVT_REPORT(clsDruck_MitarbeiterStZeiten),
    KVT_REPORT(clsDruck_KalkKosten),
    KVT_REPORT(clsDruck_MatUeber),
    KVT_REPORT(clsDruck_Bilanz),
    KVT_REPORT(clsDruck_BsEMa),
    KVT_REPORT(clsDruck_BsEStd),
    KVT_REPORT(clsDruck_BsEGes),
    KVT_REPORT(clsDruck_Kalkwerte),
    KVT_REPORT(clsDruck_WasWenn),
    KVT_REPORT(clsDruck_UmsatzHW),
};

} // namespace

std::span<const CoClass> allClasses() {
    return kClasses;
}

} // namespace kvtdruck::com
