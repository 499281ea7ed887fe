#include "cli/application_folder.h"

#include "platform/posix/atomic_file.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
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

/// The program's own file; where /proc is not mounted, by the name under which it was started.
fs::path programFile() {
    std::error_code error;
    auto file = fs::read_symlink("/proc/self/exe", error);
    if (!error)
        return file;
    return fs::canonical(reinterpret_cast<const char*>(::getauxval(AT_EXECFN)));
}

/// Beside the program: <prefix>/bin/kvtdruck and <prefix>/share/kvtdruck/layouts. The build tree has the same
/// shape.
fs::path shippedLayouts() {
    return programFile().parent_path().parent_path() / "share" / "kvtdruck" / "layouts";
}

/// The copy appears under its name only when it is complete: another run may be looking for it.
void copyWhole(const fs::path& from, const fs::path& to) {
    std::ifstream in(from, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(in), {}};
    if (!in)
        throw fs::filesystem_error("", from, std::make_error_code(std::errc::io_error));
    try {
        writeAtomically(to, content, AtomicFile::Access::Mask);
    } catch (const std::system_error& error) {
        throw fs::filesystem_error("", to, error.code());
    }
}

/// Copies what is missing.
void copyMissing(const fs::path& from, const fs::path& to) {
    for (const auto& entry : fs::recursive_directory_iterator(from)) {
        const auto target = to / entry.path().lexically_relative(from);
        if (entry.is_directory()) {
            fs::create_directories(target);
        } else if (!fs::exists(target)) {
            copyWhole(entry.path(), target);
        }
    }
}

} // namespace

fs::path layoutFolder(const fs::path& applicationFolder) {
    return applicationFolder / "DB" / "BerichteLLVT";
}

fs::path prepareApplicationFolder(const std::optional<fs::path>& chosen) {
    auto folder = fs::absolute(chosen ? *chosen : userFolder());
    fs::create_directories(layoutFolder(folder) / "Preview");
    if (const auto shipped = shippedLayouts(); fs::is_directory(shipped))
        copyMissing(shipped, layoutFolder(folder));
    return folder;
}

} // namespace kvtdruck::cli
