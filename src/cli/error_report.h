// The host's error-report object: the component's reports as German text on standard error.
#pragma once

#include "cli/console.h"
#include "module/clsFehler.h"

namespace kvtdruck::cli {

/// An error's description without the names of classes, which say nothing to users: "clsZugUmsatz" is „Umsatz“.
std::string forUsers(StringView description);

/// Makes error-report objects that write to `console`, which outlives them; the place of a run-time error in the
/// program, which says nothing to users, only when `verbose` is set.
class ErrorReports final : public ErrorReportFactory {
  public:
    ErrorReports(Console& console, bool verbose) : console_(console), verbose_(verbose) {}
    std::unique_ptr<clsFehler> create() override;

  private:
    Console& console_;
    bool verbose_;
};

} // namespace kvtdruck::cli
