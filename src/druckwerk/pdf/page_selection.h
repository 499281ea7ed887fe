// Some pages of a finished document as a document of their own.
#pragma once

#include <filesystem>
#include <string>

namespace kvtdruck::druckwerk {

/// The PDF that holds those pages of `document` that `ranges` names, such as "1-3,7", in their order, with the
/// entries of the outline that lead to them. The same input gives the same bytes. Raises std::out_of_range, with a
/// German text, where it names none of the pages.
std::string selectedPages(const std::filesystem::path& document, const std::string& ranges);

} // namespace kvtdruck::druckwerk
