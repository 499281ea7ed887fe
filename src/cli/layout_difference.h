// What tells two layouts apart, as their author sees it.
#pragma once

#include <string>
#include <vector>

namespace kvtdruck::cli {

/// The objects and rules of style that only one of two layouts has, one line for each, in their order: "- …" for
/// the first, "+ …" for the second. How a drawing program writes them down (names of objects, the order of
/// attributes, blanks, its own settings) makes no difference. A text that is no SVG is one line.
std::vector<std::string> differencesOf(const std::string& first, const std::string& second);

} // namespace kvtdruck::cli
