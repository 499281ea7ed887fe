// A layout's text, wherever it comes from.
#pragma once

#include <filesystem>
#include <string>

namespace kvtdruck::druckwerk {

/// What a layout's file holds, or would hold: `file` gives its name in messages and the folder of its pictures, and
/// need not be there.
struct LayoutText {
    std::string text;
    std::filesystem::path file;
};

} // namespace kvtdruck::druckwerk
