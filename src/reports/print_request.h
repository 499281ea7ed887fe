// One request to a report class, and what serves it.
#pragma once

#include "engine/DruckFormular.h"
#include "module/component_state.h"
#include "values/object.h"
#include "values/text.h"

#include <cstdint>

namespace kvtdruck {

/// What starts the viewer on a finished preview.
class PreviewStarter {
  public:
    virtual ~PreviewStarter() = default;
    /// Gives the engine's preview file of the list the job's own name and starts the viewer on it; reports its own
    /// errors.
    virtual bool fkt_Aktiviere_Preview(StringView listName, StringView prevPath, std::int16_t row) = 0;
};

/// What a report needs of the component around it; both outlive the report.
struct ReportEnvironment {
    ComponentState& state;
    PreviewStarter& previews;
};

/// The host's print modes; with any other there is nothing to be done.
enum PrintMode : std::int16_t { kPrint = 0, kPreview = 1, kDesign = 2 };

/// One request, as the shared signature of all report classes passes it. The adapter outlives the request.
struct PrintRequest {
    std::int16_t pPrintMode = 0;
    double pFnr = 0;
    ObjectRef pADOCon;
    ObjectRef pZuDbFnrAllg;
    DruckFormular* pDrFormDll = nullptr;
    String pListenPath;
    String pListenname;
    bool pDruckmitDruckerauswahl = false;
    ObjectRef parray;
    String pPrevPath;
    std::int16_t pAktind_ArrAllPrints = 0;
};

} // namespace kvtdruck
