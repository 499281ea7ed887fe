// Layouts share files: a style sheet that they import, drawings such as the letterhead that they show as pictures.
// Both are put in where the layout names them, so that whatever reads it afterwards finds one document.
#pragma once

#include "druckwerk/svg/layout_files.h"
#include "druckwerk/svg/xml_tree.h"

#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// The file that `name` leads to below the layout's folder, or below the one behind it where only that has it; ""
/// where it leads elsewhere.
std::filesystem::path fileBelow(const LayoutFiles& files, const std::string& name);

/// Puts in what `document` names; tells whether the company's picture has a place there. Raises a Fault with line
/// and name where a file is missing, malformed or outside of the folders.
bool compose(xmlDoc* document, const LayoutFiles& files);

/// The drawing `svg` with the sheets that it imports repeated where a drawing program sees them: in its style
/// element of the class `kSampleClass`. As it is where it is no well-formed XML, or a sheet can't be read.
std::string withSheetsShown(const std::string& svg, const LayoutFiles& files);

/// The names of the files that `compose` puts into the layout `svg`; none where it is no well-formed XML.
std::vector<std::string> sharedFilesOf(const std::string& svg);

} // namespace kvtdruck::druckwerk
