#include "cli/application_folder.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

#include <sys/auxv.h>

namespace kvtdruck::cli {
namespace {

namespace fs = std::filesystem;

/// An environment variable's value; empty where it is not set.
std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// The XDG base directory specification: relative paths are invalid and ignored.
fs::path userFolder() {
    const fs::path data = environment("XDG_DATA_HOME");
    if (data.is_absolute())
        return data / "kvtdruck";
    const fs::path home = environment("HOME");
    if (!home.is_absolute())
        throw std::runtime_error("Der Anwendungsordner ist unbekannt: weder HOME noch XDG_DATA_HOME ist gesetzt. "
                                 "--ordner nennt einen.");
    return home / ".local" / "share" / "kvtdruck";
}

} // namespace

fs::path programFile() {
    std::error_code error;
    auto file = fs::read_symlink("/proc/self/exe", error);
    if (!error)
        return file;
    return fs::canonical(reinterpret_cast<const char*>(::getauxval(AT_EXECFN)));
}

fs::path layoutFolder(const fs::path& applicationFolder) {
    return applicationFolder / "DB" / "BerichteLLVT";
}

fs::path prepareApplicationFolder(const std::optional<fs::path>& chosen) {
    auto folder = fs::absolute(chosen ? *chosen : userFolder());
    fs::create_directories(layoutFolder(folder) / "Preview");
    return folder;
}

} // namespace kvtdruck::cli
