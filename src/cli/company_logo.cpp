#include "cli/company_logo.h"

#include "catalog/usage_error.h"

#include <cmath>
#include <string>

namespace kvtdruck::cli {

std::filesystem::path logoOf(const Options& options, double company) {
    std::error_code ignored;
    if (!options.logo.empty() && !std::filesystem::is_regular_file(options.logo, ignored))
        throw catalog::UsageError("--logo: Die Datei " + options.logo.string() + " gibt es nicht.");
    if (!options.logo.empty() || options.database.empty())
        return options.logo;
    const auto folder = std::filesystem::path(options.database).parent_path();
    for (const auto& name : {"logo-" + std::to_string(std::llround(company)), std::string("logo")})
        for (const char* ending : {".png", ".jpg"})
            if (auto file = folder / (name + ending); std::filesystem::is_regular_file(file, ignored))
                return file;
    return {};
}

} // namespace kvtdruck::cli
