// The file that --werte names.
#pragma once

#include "catalog/values_file.h"

#include <filesystem>

namespace kvtdruck::cli {

/// The parameter array that `file` holds for `report`; a pipe is waited for, until the user cancels. Throws a
/// `catalog::ValuesError`, also for what is larger than any report can be handed.
std::shared_ptr<catalog::ParameterArray> readValues(const catalog::ReportEntry& report,
                                                    const std::filesystem::path& file);

} // namespace kvtdruck::cli
