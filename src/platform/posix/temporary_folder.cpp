#include "platform/posix/temporary_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

namespace kvtdruck {
namespace {

std::filesystem::path newFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kvtdruck-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), name);
    return name;
}

int opened(int parent, const char* name) {
    return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

void removeContents(int folder);

bool isRemoved(int folder, const char* name) {
    if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
        return false;
    if (::unlinkat(folder, name, 0) == 0)
        return true;
    const int inner = opened(folder, name);
    if (inner == -1)
        return false;
    removeContents(inner);
    ::close(inner);
    return ::unlinkat(folder, name, AT_REMOVEDIR) == 0;
}

/// Asks the system for names until it has none that can be removed. It takes no memory: want of it may be why the
/// folder goes.
void removeContents(int folder) {
    alignas(dirent64) std::array<char, 4096> names;
    for (bool removed = true; removed;) {
        removed = false;
        ::lseek(folder, 0, SEEK_SET);
        ssize_t size = 0;
        while ((size = ::getdents64(folder, names.data(), names.size())) > 0) {
            for (ssize_t at = 0; at < size;) {
                const auto* entry = reinterpret_cast<const dirent64*>(names.data() + at);
                removed |= isRemoved(folder, entry->d_name);
                at += entry->d_reclen;
            }
        }
    }
}

} // namespace

TemporaryFolder::TemporaryFolder() : path_(newFolder()), folder_(opened(AT_FDCWD, path_.c_str())) {
    if (folder_ == -1) {
        const int error = errno;
        ::rmdir(path_.c_str());
        throw std::system_error(error, std::generic_category(), path_.string());
    }
}

TemporaryFolder::~TemporaryFolder() {
    removeContents(folder_);
    ::close(folder_);
    ::rmdir(path_.c_str());
}

} // namespace kvtdruck
