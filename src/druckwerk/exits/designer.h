// The designer: layouts are drawn in Inkscape, with the report's variables and fields beside the page to copy.
#pragma once

#include "druckwerk/common/finding.h"
#include "druckwerk/common/options.h"

#include <cstdint>
#include <functional>
#include <string>

namespace kvtdruck::druckwerk {

/// Takes one finding about a layout.
using FindingSink = std::function<void(const Finding&)>;

/// Opens the layout and waits until the designer is closed; then gives what can be said about the layout. A layout
/// that is not there yet starts as the one that stands behind it or the generated one, and only comes about when it
/// was saved. Answers 0, or an engine code with its German message.
std::int32_t design(const DesignRequest& request, const FindingSink& findings, std::string& message);

} // namespace kvtdruck::druckwerk
