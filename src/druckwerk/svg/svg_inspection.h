// What a layout must not ask for, found before anything is made of it.
#pragma once

#include "druckwerk/svg/xml_tree.h"

#include <filesystem>

namespace kvtdruck::druckwerk {

/// Goes through the whole tree once. Raises a Fault, with the line where it is known, where the document asks for
/// something outside of `folder`, or for more than its share of time and memory (limits.h).
void inspectSvg(xmlDoc* document, const std::filesystem::path& folder);

} // namespace kvtdruck::druckwerk
