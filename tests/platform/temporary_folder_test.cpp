#include "platform/posix/temporary_folder.h"

#include "platform/as_anybody.h"
#include "platform/posix/spool_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

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

/// Where temporary files go, until it goes itself.
class TemporaryFilesIn {
  public:
    explicit TemporaryFilesIn(const fs::path& folder) {
        if (const char* const before = std::getenv("TMPDIR"))
            before_ = before;
        ::setenv("TMPDIR", folder.c_str(), 1);
    }
    TemporaryFilesIn(const TemporaryFilesIn&) = delete;
    TemporaryFilesIn& operator=(const TemporaryFilesIn&) = delete;
    ~TemporaryFilesIn() {
        if (before_)
            ::setenv("TMPDIR", before_->c_str(), 1);
        else
            ::unsetenv("TMPDIR");
    }

  private:
    std::optional<std::string> before_;
};

template <class Temporary>
int codeOfANew() {
    try {
        const Temporary temporary;
    } catch (const std::system_error& error) {
        return error.code().value();
    }
    return 0;
}

TEST(TemporaryFolderTest, WhereNoneCanBeMadeTheSystemSaysWhyAndNothingIsLeft) {
    const TemporaryFolder outer;
    const TemporaryFilesIn here(outer.path());
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const int withoutFiles = codeOfANew<TemporaryFolder>();
    const int withoutSpool = codeOfANew<SpoolFile>();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(withoutFiles, EMFILE);
    EXPECT_EQ(withoutSpool, EMFILE);
    fs::permissions(outer.path(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_exec);
    {
        const AsAnybody user;
        EXPECT_EQ(codeOfANew<TemporaryFolder>(), EACCES);
        EXPECT_EQ(codeOfANew<SpoolFile>(), EACCES);
    }
    EXPECT_TRUE(fs::is_empty(outer.path()));
    fs::permissions(outer.path(), fs::perms::owner_all);
}

TEST(TemporaryFolderTest, WhatCanNotBeRemovedStaysAndTheRestGoes) {
    const TemporaryFolder outer;
    fs::permissions(outer.path(), fs::perms::all);
    const TemporaryFilesIn here(outer.path());
    fs::path path;
    {
        const AsAnybody user;
        const TemporaryFolder folder;
        path = folder.path();
        fs::create_directory(folder / "fest");
        std::ofstream(folder / "fest/Seite") << "x";
        std::ofstream(folder / "Seite") << "x";
        fs::permissions(folder / "fest", fs::perms::owner_read | fs::perms::owner_exec);
    }
    EXPECT_FALSE(fs::exists(path / "Seite"));
    EXPECT_TRUE(fs::exists(path / "fest/Seite"));
    fs::permissions(path / "fest", fs::perms::owner_all); // so that it goes with the outer one
}

} // namespace
} // namespace kvtdruck
