// Whether a layout fits what its report defines.
#pragma once

#include "druckwerk/common/definition.h"
#include "druckwerk/common/finding.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

class Definitions;
struct Layout;

/// A message for each name that the layout needs and nobody defines, with the most similar one that is defined.
std::vector<std::string> unknownNames(const Layout& layout, const Definitions& definitions);

/// Everything that can be said about the layout `file`, given what the report defines; nothing is printed.
std::vector<Finding> checkLayout(const std::filesystem::path& file, const std::vector<Definition>& definitions);

} // namespace kvtdruck::druckwerk
