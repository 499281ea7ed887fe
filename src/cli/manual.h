// The manual page, made of what the help is made of.
#pragma once

#include <string>

namespace kvtdruck::cli {

/// The page of the program and all its commands for man(1), as troff in UTF-8.
std::string manualPage();

} // namespace kvtdruck::cli
