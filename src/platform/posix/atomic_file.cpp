#include "platform/posix/atomic_file.h"

#include "platform/posix/posix_error.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kvtdruck {

namespace fs = std::filesystem;

namespace {

constexpr int kMostLinks = 40; // as the kernel counts them
constexpr std::size_t kBufferSize = 1 << 16;

fs::path folderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

/// The descriptor of this process that `file` names, as /dev/stdout and /proc/self/fd/1 do.
std::optional<int> descriptorNamedBy(const fs::path& file) {
    std::error_code ignored;
    if (fs::canonical(folderOf(file), ignored) != "/proc/" + std::to_string(::getpid()) + "/fd")
        return std::nullopt;
    char* end = nullptr;
    const std::string name = file.filename();
    const long number = std::strtol(name.c_str(), &end, 10);
    return name.empty() || *end != '\0' ? std::nullopt : std::optional(static_cast<int>(number));
}

/// What the links at `file` lead to, one step after the other, so that each is looked at.
fs::path linkedFile(fs::path file) {
    for (int links = 0; links < kMostLinks && !descriptorNamedBy(file); ++links) {
        struct stat status {};
        if (::lstat(file.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
            return file;
        if (status.st_uid != ::geteuid() && status.st_uid != 0)
            throwSystemError(EPERM);
        file = folderOf(file) / fs::read_symlink(file);
    }
    if (!descriptorNamedBy(file))
        throwSystemError(ELOOP);
    return file;
}

std::string randomNameIn(const fs::path& folder) {
    return (folder / ".kvtdruck-XXXXXX").string();
}

} // namespace

AtomicFile::AtomicFile(const fs::path& target, Access access)
    : target_(target == "-" ? target : linkedFile(target)) {
    const std::optional<int> named = target == "-" ? STDOUT_FILENO : descriptorNamedBy(target_);
    struct stat status {};
    const bool exists = ::stat(target_.c_str(), &status) == 0;
    if (named)
        openInPlace(::fcntl(*named, F_DUPFD_CLOEXEC, 0));
    else if (exists && S_ISDIR(status.st_mode))
        throwSystemError(EISDIR);
    else if (exists && !S_ISREG(status.st_mode))
        openInPlace(::open(target_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    else
        create(access);
}

AtomicFile::Unfinished::~Unfinished() {
    if (descriptor >= 0)
        ::close(descriptor);
    if (!name.empty())
        ::unlink(name.c_str());
}

void AtomicFile::openInPlace(int descriptor) {
    if (descriptor < 0)
        throwSystemError();
    unfinished_.descriptor = descriptor;
    inPlace_ = true;
}

void AtomicFile::create(Access access) {
    const bool canBeNamedLater = ::access("/proc/self/fd", X_OK) == 0;
    if (canBeNamedLater)
        unfinished_.descriptor =
            ::open(folderOf(target_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (unfinished_.descriptor < 0) { // not every file system has files without names
        std::string name = randomNameIn(folderOf(target_));
        unfinished_.descriptor = ::mkostemp(name.data(), O_CLOEXEC);
        if (unfinished_.descriptor < 0)
            throwSystemError();
        unfinished_.name = std::move(name);
    }
    takeAttributes(target_, access);
}

void AtomicFile::takeAttributes(const fs::path& replaced, Access access) const {
    struct stat status {};
    if (::stat(replaced.c_str(), &status) != 0) {
        if (access == Access::Mask) {
            const mode_t mask = ::umask(0);
            ::umask(mask);
            if (::fchmod(unfinished_.descriptor, 0666 & ~mask) != 0)
                throwSystemError();
        }
        return;
    }
    if (::access(replaced.c_str(), W_OK) != 0)
        throwSystemError(); // a file that is read-only stays as it is
    mode_t mode = status.st_mode & 07777;
    if (::fchown(unfinished_.descriptor, status.st_uid, status.st_gid) != 0 &&
        ::fchown(unfinished_.descriptor, static_cast<uid_t>(-1), status.st_gid) != 0)
        mode &= ~static_cast<mode_t>(S_IRWXG); // another group than the one that was meant must not read it
    if (::fchmod(unfinished_.descriptor, mode) != 0)
        throwSystemError();
}

void AtomicFile::write(std::string_view data) {
    buffer_ += data;
    if (buffer_.size() >= kBufferSize)
        flush();
}

void AtomicFile::flush() {
    writeAll(unfinished_.descriptor, buffer_);
    buffer_.clear();
}

/// Gives the content a random name beside its place. The random name is taken by a file of this process first, so
/// that it is known to be free.
void AtomicFile::nameContent() {
    const std::string content = "/proc/self/fd/" + std::to_string(unfinished_.descriptor);
    for (int tries = 0; tries < 100 && unfinished_.name.empty(); ++tries) {
        std::string name = randomNameIn(folderOf(target_));
        const int taken = ::mkostemp(name.data(), O_CLOEXEC);
        if (taken < 0)
            throwSystemError();
        ::close(taken);
        ::unlink(name.c_str());
        if (::linkat(AT_FDCWD, content.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
            unfinished_.name = std::move(name);
        else if (errno != EEXIST)
            throwSystemError();
    }
    if (unfinished_.name.empty())
        throwSystemError(EEXIST);
}

void AtomicFile::commit() {
    flush();
    if (!inPlace_) {
        if (::fsync(unfinished_.descriptor) != 0)
            throwSystemError();
        if (unfinished_.name.empty())
            nameContent();
    }
    if (::close(std::exchange(unfinished_.descriptor, -1)) != 0)
        throwSystemError();
    if (inPlace_)
        return;
    const fs::path place = folderOf(target_); // behind the renaming nothing may fail
    if (::rename(unfinished_.name.c_str(), target_.c_str()) != 0)
        throwSystemError();
    unfinished_.name.clear();
    // The new name as well; where a folder can't be flushed, the file is complete all the same.
    const int folder = ::open(place.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
}

void writeAll(int descriptor, std::string_view data) {
    while (!data.empty()) {
        const ssize_t written = ::write(descriptor, data.data(), data.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throwSystemError();
        data.remove_prefix(static_cast<std::size_t>(written));
    }
}

void writeAtomically(const fs::path& target, std::string_view text, AtomicFile::Access access) {
    AtomicFile file(target, access);
    file.write(text);
    file.commit();
}

bool isSameFile(const fs::path& one, const fs::path& other) {
    std::error_code ignored;
    return fs::equivalent(one, other, ignored);
}

} // namespace kvtdruck
