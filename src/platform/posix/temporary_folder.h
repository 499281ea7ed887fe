// A folder for files that nobody keeps.
#pragma once

#include <filesystem>
#include <string_view>

namespace kvtdruck {

/// A new folder among the system's temporary files, gone with its contents when the object goes. Where none can be
/// made, std::system_error is raised.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
    int folder_; ///< open, so that it can be emptied when nothing more can be opened
};

} // namespace kvtdruck
