// How a layout's elements say what of them is printed and what only the drawing program shows.
//
// A text that shows a value has its placeholders in the label of its field, or where it lies in none in its own:
// the drawing program shows labels among an object's properties and in its list of objects, and finds objects by
// them. What only the drawing program shows has the class `kSampleClass` and is not printed. An element whose
// condition does not hold for the sample is hidden, which says nothing about its print.
#pragma once

#include "druckwerk/svg/xml_tree.h"

#include <string>

namespace kvtdruck::druckwerk {

/// What a text showed when its sample was made: what its author has written into it since is told from that.
inline constexpr const char* kSampleAttribute = "data-sample";

/// The placeholders of the text element `text` that its label, or that of its field, holds for it; "" where it has
/// them in itself, or none at all.
std::string placeholdersBehind(const xmlNode* text);

/// Takes from elements with a condition that they are hidden.
void showConditional(xmlNode* root);

} // namespace kvtdruck::druckwerk
