// What options are preset to: by the environment, and by the user's settings file.
#pragma once

#include "cli/command_words.h"
#include "cli/settings_file.h"

#include <filesystem>
#include <optional>

namespace kvtdruck::cli {

Presets presetsOf(Settings settings);

/// The first of two that presets an option.
Presets either(Presets first, Presets second);

/// The environment, and behind it the user's settings file, whose keys are the options of `app`'s commands. Throws
/// a `catalog::UsageError` for a file that is wrong.
Presets userPresets(const CLI::App& app);

/// Presets this program's options for whatever this process starts: it asks about the same data. A connection,
/// which may hold a password, is not handed down.
void handDown(const std::filesystem::path& database, const std::optional<std::filesystem::path>& values,
              double company, const std::filesystem::path& applicationFolder);

} // namespace kvtdruck::cli
