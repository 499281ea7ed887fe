// The application folder: where the component looks for layouts and writes previews.
#pragma once

#include <filesystem>
#include <optional>

namespace kvtdruck::cli {

/// The folder of layouts within an application folder.
std::filesystem::path layoutFolder(const std::filesystem::path& applicationFolder);

/// The program's own file; where /proc is not mounted, by the name under which it was started.
std::filesystem::path programFile();

/// The application folder `chosen`, or the user's own ($XDG_DATA_HOME/kvtdruck), with its folders. Throws a
/// `std::filesystem::filesystem_error`.
std::filesystem::path prepareApplicationFolder(const std::optional<std::filesystem::path>& chosen);

} // namespace kvtdruck::cli
