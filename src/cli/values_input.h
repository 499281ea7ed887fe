// CSV files as users hand them over: the values of --werte, and what is imported.
#pragma once

#include "catalog/values_file.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace kvtdruck::cli {

/// The bytes of a CSV file; a pipe is waited for, until the user cancels. Throws a `catalog::ValuesError`, also
/// where there are more than `most` megabytes.
std::string readCsv(const std::filesystem::path& file, std::size_t most);

/// The parameter array that `file` holds for `report`. Throws a `catalog::ValuesError`, also for what is larger
/// than any report can be handed.
std::shared_ptr<catalog::ParameterArray> readValues(const catalog::ReportEntry& report,
                                                    const std::filesystem::path& file);

} // namespace kvtdruck::cli
