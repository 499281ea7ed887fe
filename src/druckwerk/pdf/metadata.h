// What a document says about itself, to readers of its information and to archives.
#pragma once

#include "druckwerk/common/pdf_level.h"
#include "druckwerk/common/print_date.h"
#include "values/text.h"

#include <string>
#include <vector>

namespace kvtdruck::druckwerk {

struct DocumentInfo {
    String title;
    String author;
    String subject;
    String creator;
    std::vector<String> keywords; ///< empty ones are left out
    PrintDate date;
};

/// A date as PDF writes it (ISO 32000-1, 7.9.4), with its parentheses.
std::string pdfDate(const PrintDate& date);

/// The document's information dictionary (ISO 32000-1, 14.3.3).
std::string infoDictionary(const DocumentInfo& info);

/// The same as an XMP packet (ISO 16684-1), with the identification of `level`.
std::string xmpPacket(const DocumentInfo& info, PdfLevel level);

} // namespace kvtdruck::druckwerk
