#include "cli/layout_store.h"

#include "cli/application_folder.h"
#include "cli/option_values.h"
#include "platform/posix/atomic_file.h"
#include "platform/posix/input_file.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kvtdruck::cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEarlier = "Frueher";

std::string nameOf(std::string_view list) {
    return std::string(list) + ".svg";
}

} // namespace

std::string contentOf(const fs::path& file) {
    return fs::is_regular_file(file) ? readInput(file) : std::string();
}

LayoutStore::LayoutStore(const fs::path& applicationFolder) : folder_(layoutFolder(applicationFolder)) {}

fs::path LayoutStore::installedFolder() {
    // Beside the program: <prefix>/bin/kvtdruck and <prefix>/share/kvtdruck/layouts. The build tree has the same
    // shape.
    const auto folder = programFile().parent_path().parent_path() / "share" / "kvtdruck" / "layouts";
    return fs::is_directory(folder) ? folder : fs::path();
}

fs::path LayoutStore::own(std::string_view list) const {
    return folder_ / nameOf(list);
}

fs::path LayoutStore::installed(std::string_view list) const {
    const auto folder = installedFolder();
    return folder.empty() ? fs::path() : folder / nameOf(list);
}

fs::path LayoutStore::inUse(std::string_view list) const {
    return fs::exists(own(list)) || !fs::exists(installed(list)) ? own(list) : installed(list);
}

std::vector<fs::path> LayoutStore::earlier(std::string_view list) const {
    std::vector<fs::path> files;
    if (!fs::exists(folder_ / kEarlier))
        return files;
    const auto beginning = std::string(list) + "-";
    for (const auto& entry : fs::directory_iterator(folder_ / kEarlier))
        if (entry.path().filename().native().starts_with(beginning))
            files.push_back(entry.path());
    std::ranges::sort(files, std::greater());
    return files;
}

void LayoutStore::keep(std::string_view list, const std::string& content) const {
    const auto now = currentDate();
    std::array<char, 32> time{};
    std::snprintf(time.data(), time.size(), "-%04d%02d%02d-%02d%02d%02d", now.year, now.month, now.day, now.hour,
                  now.minute, now.second);
    fs::create_directories(folder_ / kEarlier);
    fs::path file;
    int number = 0;
    do { // several within a second stand in their order
        std::array<char, 16> digits{};
        std::snprintf(digits.data(), digits.size(), "-%03d", number++);
        file = folder_ / kEarlier / (std::string(list) + time.data() + digits.data() + ".svg");
    } while (fs::exists(file));
    writeAtomically(file, content, AtomicFile::Access::Mask);
}

void LayoutStore::returnToInstalled(std::string_view list) const {
    keep(list, contentOf(own(list)));
    fs::remove(own(list));
}

void LayoutStore::takeBack(std::string_view list) const {
    const auto latest = earlier(list).front();
    const auto content = contentOf(latest);
    if (fs::exists(own(list)))
        keep(list, contentOf(own(list)));
    writeAtomically(own(list), content, AtomicFile::Access::Mask);
    fs::remove(latest);
}

} // namespace kvtdruck::cli
