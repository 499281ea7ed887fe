// What the engine keeps of a print job.
#pragma once

#include "druckwerk/layout/layout.h"
#include "druckwerk/print_job.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace kvtdruck::druckwerk {

/// A print job between its start and its end.
struct Job {
    std::string listName;
    std::filesystem::path layoutFolder;
    bool preview = false;
    bool failed = false;
    std::optional<Layout> layout; ///< until the first page
    std::map<std::size_t, Layout::NameUse> names;
    std::filesystem::path output;
    std::unique_ptr<PrintJob> print; ///< from the first page on
};

} // namespace kvtdruck::druckwerk
