// The options of each command, told once: how they are called, what they mean, what help says of them.
#pragma once

#include "cli/options.h"

namespace CLI {
class App;
}

namespace kvtdruck::cli {

/// Adds all commands with their options; parsing fills `options`, which outlives `app`.
void addCommands(CLI::App& app, Options& options);

} // namespace kvtdruck::cli
