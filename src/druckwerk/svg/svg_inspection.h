// What a layout must not ask for, found before anything is made of it.
#pragma once

#include "druckwerk/svg/composition.h"

namespace kvtdruck::druckwerk {

/// Raises a Fault where the document declares entities or names a style sheet outside of itself, or is empty.
void refuseDeclarations(xmlDoc* document);

/// Goes through the whole tree once. Raises a Fault, with the line where it is known, where the document asks for
/// something outside of its folders, or for more than its share of time and memory (limits.h).
void inspectSvg(xmlDoc* document, const LayoutFiles& files);

} // namespace kvtdruck::druckwerk
