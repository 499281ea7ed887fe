// Slips of the pen: what a layout says that is understood, but hardly meant.
#pragma once

#include "druckwerk/layout/layout.h"
#include "druckwerk/svg/svg_file.h"

#include <functional>
#include <string>

namespace kvtdruck::druckwerk {

/// Takes what is to be said about an element of the layer `layer`.
using ReportSlip = std::function<void(const xmlNode* node, const std::string& layer, const std::string& message)>;

/// Looks for misspelt layers, attributes and classes, with what was probably meant.
void inspectNames(xmlNode* root, const ReportSlip& report);

/// Looks for fields and charts that lie off the page or outside their bands, and for bands without room. Gives
/// messages with line and layer.
std::vector<std::string> inspectPlaces(const Layout& layout);

} // namespace kvtdruck::druckwerk
