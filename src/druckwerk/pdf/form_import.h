// Pages of another PDF as forms of the document.
#pragma once

#include "druckwerk/pdf/pdf_output.h"

#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

/// Copies each page of `pdf` into the document; gives the numbers of the form objects.
std::vector<int> importPages(PdfOutput& output, const std::string& pdf);

} // namespace kvtdruck::druckwerk
