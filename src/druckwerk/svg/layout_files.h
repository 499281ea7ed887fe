// The files that a layout names.
#pragma once

#include <filesystem>
#include <utility>

namespace kvtdruck::druckwerk {

/// Where the files lie that a layout names, and what stands for those that it can't name.
struct LayoutFiles {
    // NOLINTNEXTLINE(google-explicit-constructor): a layout's folder alone is all that most callers have
    LayoutFiles(std::filesystem::path own, std::filesystem::path next = {}, std::filesystem::path picture = {})
        : folder(std::move(own)), behind(std::move(next)), logo(std::move(picture)) {}

    std::filesystem::path folder; ///< the layout's
    std::filesystem::path behind; ///< for what is not there; empty: nothing stands behind
    std::filesystem::path logo;   ///< the company's picture; empty: it has none
};

} // namespace kvtdruck::druckwerk
