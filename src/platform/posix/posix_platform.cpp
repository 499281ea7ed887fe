#include "platform/posix/posix_platform.h"

#include "values/conversion.h"
#include "values/letters.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace kvtdruck {

namespace fs = std::filesystem;

RuntimeError runtimeErrorOf(int code) {
    switch (code) {
    case ENOENT:
        return RuntimeError(ErrorNumber::FileNotFound);
    case ENOTDIR:
        return RuntimeError(ErrorNumber::PathNotFound);
    case EEXIST:
        return RuntimeError(ErrorNumber::FileAlreadyExists);
    case ENOSPC:
    case EDQUOT:
    case EFBIG: // as Windows answers on a disk whose files can't be that large
        return RuntimeError(ErrorNumber::DiskFull);
    case EACCES:
    case EPERM:
    case EROFS:
    case EBUSY:
    case ETXTBSY:
        return RuntimeError(ErrorNumber::PermissionDenied);
    case EIO:
        return RuntimeError(ErrorNumber::DeviceIoError);
    case ENOMEM:
    case EAGAIN:
        return RuntimeError(ErrorNumber::OutOfMemory);
    default:
        return RuntimeError(ErrorNumber::PathFileAccess);
    }
}

std::string posixPath(StringView path) {
    if (path.find(u'\0') != StringView::npos)
        throw RuntimeError(ErrorNumber::PathFileAccess);
    std::string native = toUtf8(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

namespace {

void check(const std::error_code& error) {
    if (error)
        throw runtimeErrorOf(error.value());
}

/// The status of the file (not folder) `path`; the run-time error of a missing file, or of a missing folder, where
/// there is none.
fs::file_status existingFile(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) {
        const bool folderThere = path.parent_path().empty() || fs::is_directory(path.parent_path(), error);
        throw RuntimeError(folderThere ? ErrorNumber::FileNotFound : ErrorNumber::PathNotFound);
    }
    check(error);
    if (fs::is_directory(status))
        throw RuntimeError(ErrorNumber::FileNotFound);
    return status;
}

/// A file is read-only when its owner may not write it: root could, but is asked to mean it all the same.
bool isReadOnly(const fs::file_status& status) {
    return (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

class PosixFileSystem : public FileSystem {
  public:
    bool exists(StringView path) override {
        std::error_code error;
        const fs::file_status status = fs::status(posixPath(path), error);
        return fs::exists(status) && !fs::is_directory(status);
    }

    void remove(StringView path, bool force) override {
        const fs::path file = posixPath(path);
        if (isReadOnly(existingFile(file)) && !force)
            throw RuntimeError(ErrorNumber::PermissionDenied);
        std::error_code error;
        fs::remove(file, error);
        check(error);
    }

    void rename(StringView path, StringView newName) override {
        const fs::path file = posixPath(path);
        const fs::path name = posixPath(newName);
        if (name.empty() || name != name.filename())
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        existingFile(file);
        const fs::path target = file.parent_path() / name;
        std::error_code error;
        if (fs::exists(fs::symlink_status(target, error)))
            throw RuntimeError(ErrorNumber::FileAlreadyExists);
        fs::rename(file, target, error);
        check(error);
    }
};

/// The parts of a command line: separated by blanks, or held together by double quotes.
std::vector<std::string> splitCommandLine(StringView commandLine) {
    std::vector<std::string> parts;
    String part;
    bool begun = false;
    bool quoted = false;
    const auto finish = [&] {
        if (begun)
            parts.push_back(toUtf8(part));
        part.clear();
        begun = false;
    };
    for (const char16_t letter : commandLine) {
        if (letter == u'"') {
            quoted = !quoted;
            begun = true;
        } else if (letter == u' ' && !quoted) {
            finish();
        } else {
            part += letter;
            begun = true;
        }
    }
    finish();
    return parts;
}

bool isPreviewViewer(std::string program) {
    program.erase(0, program.find_last_of("\\/") + 1);
    return asciiLower(program) == "llview12.exe";
}

/// Whether the search path (or, for a name with "/", the path itself) leads to a program of that name.
bool isInstalled(const std::string& program) {
    const auto executable = [](const fs::path& path) {
        std::error_code error;
        return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
    };
    if (program.find('/') != std::string::npos)
        return executable(program);
    const char* const variable = std::getenv("PATH");
    std::string_view folders = variable != nullptr ? variable : "/usr/local/bin:/usr/bin:/bin";
    while (!folders.empty()) {
        const std::size_t end = std::min(folders.find(':'), folders.size());
        if (executable(fs::path(folders.substr(0, end)) / program))
            return true;
        folders.remove_prefix(std::min(end + 1, folders.size()));
    }
    return false;
}

/// How a process is started: in a session of its own, with default signals and nothing of ours but the screen.
class SpawnSettings {
  public:
    SpawnSettings() {
        sigset_t signals;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }

    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_t actions{};
};

} // namespace

const std::vector<std::string>& commonPdfViewers() {
    static const std::vector<std::string> viewers{"evince",  "okular", "atril",    "xreader",
                                                  "zathura", "mupdf",  "qpdfview", "xdg-open"};
    return viewers;
}

PosixProcesses::~PosixProcesses() {
    reap();
}

std::optional<std::string> PosixProcesses::viewer() const {
    const auto found = std::find_if(viewers_.begin(), viewers_.end(), isInstalled);
    return found == viewers_.end() ? std::nullopt : std::optional(*found);
}

std::vector<std::string> PosixProcesses::viewerCommand(std::vector<std::string> arguments) const {
    const auto installed = viewer();
    if (!installed) {
        std::string names;
        for (const std::string& name : viewers_)
            names += (names.empty() ? "" : ", ") + name;
        throw RuntimeError(static_cast<long>(ErrorNumber::FileNotFound),
                           String(describe(static_cast<long>(ErrorNumber::FileNotFound))) +
                               u": kein PDF-Betrachter installiert (gesucht: " + fromUtf8(names) + u")");
    }
    for (std::string& argument : arguments)
        std::replace(argument.begin(), argument.end(), '\\', '/');
    arguments.front() = *installed;
    return arguments;
}

Process PosixProcesses::start(StringView commandLine) {
    reap();
    std::vector<std::string> arguments = splitCommandLine(commandLine);
    if (arguments.empty() || arguments.front().empty())
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    if (isPreviewViewer(arguments.front()))
        arguments = viewerCommand(std::move(arguments));

    std::vector<char*> pointers(arguments.size() + 1); // ends with a null pointer
    std::transform(arguments.begin(), arguments.end(), pointers.begin(),
                   [](std::string& argument) { return argument.data(); });
    const SpawnSettings settings;
    pid_t id = 0;
    const int failure =
        posix_spawnp(&id, pointers[0], &settings.actions, &settings.attributes, pointers.data(), environ);
    if (failure != 0)
        throw runtimeErrorOf(failure);
    running_.push_back(id);
    return {id};
}

void PosixProcesses::terminate(const Process& process) {
    // As long as an ended child has not been waited for, its id can't belong to another process.
    if (isRunning(process.id))
        kill(process.id, SIGTERM);
}

bool PosixProcesses::isRunning(std::int32_t id) {
    reap();
    return std::find(running_.begin(), running_.end(), id) != running_.end();
}

void PosixProcesses::reap() {
    const auto ended = [](std::int32_t id) { return waitpid(id, nullptr, WNOHANG) != 0; };
    running_.erase(std::remove_if(running_.begin(), running_.end(), ended), running_.end());
}

PosixPlatform::PosixPlatform(PosixSettings settings)
    : settings_(std::move(settings)), processes_(settings_.viewers) {}

std::unique_ptr<FileSystem> PosixPlatform::createFileSystem() {
    return std::make_unique<PosixFileSystem>();
}

void PosixPlatform::processPendingMessages() {
    if (settings_.pendingMessages)
        settings_.pendingMessages();
}

Date PosixPlatform::now() {
    if (settings_.clock)
        return settings_.clock();
    const std::time_t moment = std::time(nullptr);
    std::tm local{};
    localtime_r(&moment, &local);
    return dateOf(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                  std::min(local.tm_sec, 59));
}

} // namespace kvtdruck
