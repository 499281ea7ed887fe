// The error report of last resort.
#pragma once

#include "module/clsFehler.h"

namespace kvtdruck::com {

/// Takes the place of a host's error-report object that is not there: each report becomes a line of the UTF-8 file
/// KVTDruck\Fehler.log in the user's local application data, and a message box where the process has a visible
/// desktop.
class FallbackReporter final : public clsFehler {
  public:
    bool fkt_Fehlermeldung(StringView className, StringView procedure, long number, StringView text,
                           bool runtime) override;
};

} // namespace kvtdruck::com
