// Fonts by their names.
#pragma once

#include <string>
#include <tuple>
#include <vector>

namespace kvtdruck::druckwerk {

/// A font as a layout asks for it.
struct FontRequest {
    std::vector<std::string> families;
    int weight = 400;
    bool italic = false;
    bool operator==(const FontRequest&) const = default;
    bool operator<(const FontRequest& other) const {
        return std::tie(families, weight, italic) < std::tie(other.families, other.weight, other.italic);
    }
};

} // namespace kvtdruck::druckwerk
