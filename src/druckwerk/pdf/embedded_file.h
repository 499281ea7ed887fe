// A file within a document that says what it is to it.
#pragma once

#include "druckwerk/common/attachment.h"
#include "druckwerk/common/print_date.h"
#include "druckwerk/pdf/pdf_output.h"

namespace kvtdruck::druckwerk {

/// Writes the attachment as the data behind the document (ISO 19005-3, annex E); gives the object that stands for
/// it. Raises a Fault where the file can't be read.
int writeEmbeddedFile(PdfOutput& output, const Attachment& attachment, const PrintDate& date);

} // namespace kvtdruck::druckwerk
