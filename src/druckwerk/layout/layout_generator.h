// Layouts for reports that have none yet.
#pragma once

#include "druckwerk/common/definition.h"

#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// A sound layout (SVG text) for the variables and fields given: letterhead, heading, table or sheet, page numbers.
std::string generateLayout(const std::vector<Definition>& definitions);

} // namespace kvtdruck::druckwerk
