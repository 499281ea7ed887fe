// The layouts of an application folder: those that its owner has changed lie there, behind them stand the installed
// ones.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck::cli {

/// Operations throw a `std::filesystem::filesystem_error` or a `std::system_error`.
class LayoutStore {
  public:
    explicit LayoutStore(const std::filesystem::path& applicationFolder);

    /// The folder of the installed layouts; empty where there is none.
    static std::filesystem::path installedFolder();

    std::filesystem::path own(std::string_view list) const;
    /// Empty where no layouts are installed.
    std::filesystem::path installed(std::string_view list) const;
    /// The one that is printed with: the own one, or where it is not there and an installed one is, that.
    std::filesystem::path inUse(std::string_view list) const;
    /// What has been the own one before, the latest first.
    std::vector<std::filesystem::path> earlier(std::string_view list) const;

    /// Makes `content`, which has been the own layout, an earlier one.
    void keep(std::string_view list, const std::string& content) const;
    /// The installed layout is in use again; the own one is kept as an earlier one.
    void returnToInstalled(std::string_view list) const;
    /// The latest of the earlier ones is the own one again, and what it replaces is an earlier one.
    void takeBack(std::string_view list) const;

  private:
    std::filesystem::path folder_;
};

/// The content of a regular file; nothing where there is none. Throws a `std::system_error` where it can't be read.
std::string contentOf(const std::filesystem::path& file);

} // namespace kvtdruck::cli
