#include "platform/posix/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace kvtdruck {
namespace {

namespace fs = std::filesystem;

TEST(TemporaryFolderTest, GoesWithFilesFoldersAndLinksButNotWithWhatTheyLeadTo) {
    TemporaryFolder elsewhere;
    std::ofstream(elsewhere / "kept") << "x";
    std::optional<TemporaryFolder> folder(std::in_place);
    const fs::path path = folder->path();
    fs::create_directories(*folder / "a/b");
    fs::create_symlink(elsewhere.path(), *folder / "a/link");
    for (int i = 0; i < 1000; ++i) // more names than the system tells at once
        std::ofstream(*folder / ("a/b/Seite " + std::to_string(i))) << "x";
    folder.reset();
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(fs::exists(elsewhere / "kept"));
}

TEST(TemporaryFolderTest, GoesWhereNoMoreFilesCanBeOpened) {
    std::optional<TemporaryFolder> folder(std::in_place);
    const fs::path path = folder->path();
    std::ofstream(*folder / "Seite") << "x";
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const int more = ::open("/dev/null", O_RDONLY);
    folder.reset();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(more, -1);
    EXPECT_FALSE(fs::exists(path));
}

} // namespace
} // namespace kvtdruck
