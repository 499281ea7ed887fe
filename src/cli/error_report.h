// The host's error-report object: the component's reports as German text on standard error.
#pragma once

#include "cli/console.h"
#include "module/clsFehler.h"

namespace kvtdruck::cli {

/// Makes error-report objects that write to `console`, which outlives them.
class ErrorReports final : public ErrorReportFactory {
  public:
    explicit ErrorReports(Console& console) : console_(console) {}
    std::unique_ptr<clsFehler> create() override;

  private:
    Console& console_;
};

} // namespace kvtdruck::cli
