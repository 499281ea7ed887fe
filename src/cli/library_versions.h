// Which libraries the program runs with: what a report of a mistake should tell.
#pragma once

#include <string>

namespace kvtdruck::cli {

/// The program's version, and below it those of its libraries; of shared ones the version that is loaded, where
/// they tell it.
std::string versionText();

} // namespace kvtdruck::cli
