// The host's error-report object.
#pragma once

#include "values/text.h"

#include <memory>

namespace kvtdruck {

class clsFehler {
  public:
    virtual ~clsFehler() = default;
    /// Takes one report. `number` is a run-time error's number, or 0 for a message that the component composed;
    /// `runtime` is true for a trapped run-time error. The result is ignored by all callers.
    virtual bool fkt_Fehlermeldung(StringView className, StringView procedure, long number, StringView text,
                                   bool runtime) = 0;
};

/// Where the error-report object comes from; asked once, at the first report.
class ErrorReportFactory {
  public:
    virtual ~ErrorReportFactory() = default;
    virtual std::unique_ptr<clsFehler> create() = 0;
};

} // namespace kvtdruck
