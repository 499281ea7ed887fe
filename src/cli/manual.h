// The manual page, made of what the help is made of.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace kvtdruck::cli {

/// The page for man(1), as troff in UTF-8.
std::string manualPage(const CLI::App& app);

} // namespace kvtdruck::cli
