// Everything that one call prints: which documents, where they go, and how they are shared among processes.
#pragma once

#include "cli/console.h"
#include "cli/file_names.h"
#include "cli/options.h"
#include "cli/report_run.h"

#include <vector>

namespace kvtdruck::cli {

/// What names of files and messages tell of a document.
NameParts partsOf(const PrintRequest& request);
/// How messages name a document.
std::string nameOf(const PrintRequest& request);

/// The documents that `options` ask for, in their order: companies, within them lists, within them years or
/// employees. Throws a `catalog::UsageError`, and what the data access throws.
std::vector<PrintRequest> requestsOf(const Options& options, Console& console);

/// Prints, previews, designs or checks all that `options` ask for; gives the program's exit code. Of several
/// documents each is printed whether or not others fail; those that failed are named at the end.
int printAll(const Options& options, Console& console);

} // namespace kvtdruck::cli
