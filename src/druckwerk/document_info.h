// What a document tells of itself.
#pragma once

#include "druckwerk/common/options.h"
#include "druckwerk/pdf/metadata.h"

namespace kvtdruck::druckwerk {

/// The info of a document that begins with the list `list` under this heading, of this company.
DocumentInfo documentInfo(const Options& options, const String& heading, const String& company, const String& list);

} // namespace kvtdruck::druckwerk
