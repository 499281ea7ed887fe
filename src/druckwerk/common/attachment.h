// A file that a document carries along.
#pragma once

#include <filesystem>
#include <string>

namespace kvtdruck::druckwerk {

struct Attachment {
    std::filesystem::path file; ///< where its bytes are; its last part is its name in the document
    std::string mimeType;
    std::string description;
};

} // namespace kvtdruck::druckwerk
