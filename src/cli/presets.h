// What options are preset to: by the environment, and by the user's settings file.
#pragma once

#include "cli/command_words.h"
#include "cli/settings_file.h"

namespace kvtdruck::cli {

Presets presetsOf(Settings settings);

/// The first of two that presets an option.
Presets either(Presets first, Presets second);

/// The environment, and behind it the user's settings file, whose keys are the options of `app`'s commands. Throws
/// a `catalog::UsageError` for a file that is wrong.
Presets userPresets(const CLI::App& app);

} // namespace kvtdruck::cli
