// Options in TOML files (https://toml.io/de/v1.0.0): a user's settings, and job files with several prints.
#pragma once

#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace kvtdruck::cli {

/// Options by their long names without dashes; several values where the file has an array, "true" or "false" for a
/// flag.
using Settings = std::map<std::string, std::vector<std::string>>;

/// One table [[druck]] of a job file.
struct PrintSettings {
    std::size_t line;
    Settings settings;
};

struct SettingsFile {
    Settings general;                  ///< what stands before all tables
    std::vector<PrintSettings> prints; ///< in the order of the file
};

/// Reads a file whose keys are among `known`. Throws a `catalog::UsageError` with file, line and reason.
SettingsFile readSettings(const std::filesystem::path& file, std::span<const std::string> known);

} // namespace kvtdruck::cli
