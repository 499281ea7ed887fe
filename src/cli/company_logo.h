// The company's picture in the letterhead.
#pragma once

#include "cli/options.h"

#include <filesystem>

namespace kvtdruck::cli {

/// The picture that the options name; where they name none, the one that lies beside the database:
/// "logo-<company>", or "logo" for all companies, as .png or .jpg. Empty where there is none. Throws a
/// `catalog::UsageError` where the file that is named is not there.
std::filesystem::path logoOf(const Options& options, double company);

} // namespace kvtdruck::cli
