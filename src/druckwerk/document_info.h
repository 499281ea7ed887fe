// What a document tells of itself.
#pragma once

#include "druckwerk/common/options.h"
#include "druckwerk/pdf/metadata.h"

namespace kvtdruck::druckwerk {

/// The info of a document that begins with the list `list` under this heading, of this company.
DocumentInfo documentInfo(const Options& options, const String& heading, const String& company, const String& list);

/// What a document holds, if that is said, and when it was printed.
String subjectOf(const String& contents, const PrintDate& date);

} // namespace kvtdruck::druckwerk
