// The files that a layout shares with others, beside it while it is in the designer.
#pragma once

#include "druckwerk/common/options.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace kvtdruck::druckwerk {

/// What the layout `svg` names and only the folder behind its own has is copied to it, since the designer looks
/// there alone, and is gone with the object, except what was changed meanwhile. Raises a std::system_error where a
/// copy can't be written.
class LentFiles {
  public:
    LentFiles(const DesignRequest& request, const std::string& svg);
    LentFiles(const LentFiles&) = delete;
    LentFiles& operator=(const LentFiles&) = delete;
    ~LentFiles();

  private:
    void lend(const DesignRequest& request, const std::string& name);

    std::vector<std::pair<std::filesystem::path, std::string>> files_; ///< with their contents
};

} // namespace kvtdruck::druckwerk
