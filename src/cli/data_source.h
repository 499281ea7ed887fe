// The database that the options name, and what it holds.
#pragma once

#include "cli/cancellation.h"
#include "cli/error_report.h"
#include "cli/options.h"
#include "cli/print_plan.h"
#include "kvtzug/kvtzug.h"
#include "module/component_state.h"
#include "platform/posix/posix_platform.h"

#include <memory>
#include <string>
#include <vector>

namespace kvtdruck::cli {

struct Company {
    std::string number;
    std::string name;
    std::string town;
};

/// The companies as a JSON array for programs.
std::string companiesAsJson(const std::vector<Company>& companies);

/// The surroundings in which the component reads; without a database it reads blank data. Its operations throw the
/// `RuntimeError`s of the data access.
class DataSource {
  public:
    /// `options` and `console` outlive it.
    DataSource(const Options& options, Console& console);

    ComponentState& state() { return state_; }
    PosixPlatform& platform() { return platform_; }
    const std::shared_ptr<HostConnection>& connection() const { return connection_; }

    std::vector<Company> companies();
    /// Lets the connection show no more than the selected years where the component knows no such selection.
    void show(const catalog::ReportEntry& report, const catalog::Selections& ranges);
    /// The years, accounts and employees that `report` can be asked for; the source outlives the result.
    ExistingValues existing(const catalog::ReportEntry& report, double company);

  private:
    PosixPlatform platform_;
    std::unique_ptr<DataLibrary> library_;
    ErrorReports errors_;
    ComponentState state_;
    std::shared_ptr<HostConnection> connection_;
};

} // namespace kvtdruck::cli
