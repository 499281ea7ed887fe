// Which years, accounts and employees a list can be asked for, as the data access knows them.
#pragma once

#include "cli/print_plan.h"
#include "module/component_state.h"
#include "values/object.h"

namespace kvtdruck::cli {

/// What exists for `report` of a company. `state` and `report` outlive the result, which throws the `RuntimeError`s
/// of the data access.
ExistingValues existingValues(ComponentState& state, ObjectRef connection, const catalog::ReportEntry& report,
                              double company);

} // namespace kvtdruck::cli
