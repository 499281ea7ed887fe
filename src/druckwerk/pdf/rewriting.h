// Finished documents that are changed once more.
#pragma once

#include <string>

class QPDF;

namespace kvtdruck::druckwerk {

/// The document as a PDF file, its streams as they are. The same document gives the same bytes.
std::string written(QPDF& pdf);

} // namespace kvtdruck::druckwerk
