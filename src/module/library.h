// The foreign objects that the component creates or is handed: the data-access library KVTZUG and the host's
// error-report object.
#pragma once

#include "values/object.h"
#include "values/text.h"

#include <memory>

namespace kvtdruck {

/// The host's data-access library. Its classes, operations and getters are those of members.h.
class Kvtzug {
  public:
    virtual ~Kvtzug() = default;
    /// A new object of the class (such as u"clsZugUmsatz"); run-time error 429 where it can't be created.
    virtual ObjectRef create(StringView className) = 0;
};

/// The host's error-report object.
class clsFehler {
  public:
    virtual ~clsFehler() = default;
    /// Takes one report. `number` is a run-time error's number, or 0 for a message that the component composed;
    /// `runtime` is true for a trapped run-time error. The result is ignored by all callers.
    virtual bool fkt_Fehlermeldung(StringView className, StringView procedure, long number, StringView text,
                                   bool runtime) = 0;
};

/// Where the error-report object comes from; asked once, at the first report.
class FehlerFactory {
  public:
    virtual ~FehlerFactory() = default;
    virtual std::unique_ptr<clsFehler> create() = 0;
};

} // namespace kvtdruck
