// A folder for files that nobody keeps.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace kvtdruck {

/// A new folder among the system's temporary files, gone with its contents when the object goes. Where none can be
/// made, std::system_error is raised.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kvtdruck-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), name);
        path_ = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

} // namespace kvtdruck
