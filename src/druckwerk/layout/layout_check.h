// Whether a layout fits what its report defines.
#pragma once

#include "druckwerk/common/definition.h"
#include "druckwerk/common/finding.h"
#include "druckwerk/common/layout_text.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

class Definitions;
struct Layout;

/// A message for each name that the layout uses and nobody defines, with its place and the most similar one that is
/// defined. A name that stands only under a condition may be missing, unless it is similar to one that is defined.
std::vector<std::string> unknownNames(const Layout& layout, const Definitions& definitions);

/// What is to be said about a layout, given what the report defines; nothing is printed. With `unused` also which
/// variables and fields it does not print.
std::vector<Finding> checkLayout(const LayoutText& layout, const std::vector<Definition>& definitions,
                                 bool unused = false, const std::filesystem::path& behind = {});
/// The same about the layout `file`.
std::vector<Finding> checkLayout(const std::filesystem::path& file, const std::vector<Definition>& definitions,
                                 bool unused = false, const std::filesystem::path& behind = {});

/// Whether the layout `file` can be read and can't be printed with.
bool hasMistakes(const std::filesystem::path& file, const std::filesystem::path& behind);

} // namespace kvtdruck::druckwerk
