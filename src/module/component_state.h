// What the objects of the component share.
#pragma once

#include "module/clsFehler.h"
#include "module/data_library.h"
#include "platform/services.h"

#include <cstdint>
#include <memory>

namespace kvtdruck {

/// The name under which a procedure reports: class or module, and procedure, as the host's error log shows them.
struct Procedure {
    StringView className;
    StringView name;
};

/// The surroundings, the host's data-access library, the error-report object and the product-mode value of the
/// objects that work together on one thread. It outlives all of them; several states know nothing of each other.
class ComponentState {
  public:
    ComponentState(Platform& platform, DataLibrary& dataLibrary, ErrorReportFactory& errorReports)
        : platform_(platform), dataLibrary_(dataLibrary), errorReports_(errorReports) {}

    Platform& platform() { return platform_; }
    DataLibrary& dataLibrary() { return dataLibrary_; }
    const Locale& locale() { return platform_.locale(); }

    /// The host's product-mode value, handed to every data-access object unchanged.
    std::int16_t pSelmoraFuer = 0;
    /// Requests that run at this moment, one within the other.
    int runningRequests = 0;

    /// Reports a message that the component composed itself: number 0, no run-time error.
    void report(const Procedure& procedure, StringView text) noexcept;

    /// Reports the exception being handled as the run-time error of `procedure`. Call only within a catch block.
    void reportRuntimeError(const Procedure& procedure) noexcept;

  private:
    void report(const Procedure& procedure, long number, StringView text, bool runtime) noexcept;

    Platform& platform_;
    DataLibrary& dataLibrary_;
    ErrorReportFactory& errorReports_;
    std::unique_ptr<clsFehler> errorReport_;
};

} // namespace kvtdruck
