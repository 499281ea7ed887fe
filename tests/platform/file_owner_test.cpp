// Files and links that belong to others: only root can make them.
#include "platform/as_anybody.h"
#include "platform/atomic_file_fixture.h"

#include <unistd.h>

namespace kvtdruck {
namespace {

using FileOwnerTest = AtomicFileTest;

TEST_F(FileOwnerTest, AReplacedFileKeepsItsOwner) {
    put(target, "alt");
    ASSERT_EQ(::chown(target.c_str(), 12345, 23456), 0);
    writeAtomically(target, "neu", AtomicFile::Access::Owner);
    EXPECT_EQ(statusOf(target).st_uid, 12345U);
    EXPECT_EQ(statusOf(target).st_gid, 23456U);
}

TEST_F(FileOwnerTest, ALinkOfSomebodyElseIsRefused) {
    const auto link = folder.path() / "aktuell.pdf";
    put(target, "alt");
    fs::create_symlink(target, link);
    ASSERT_EQ(::lchown(link.c_str(), 12345, 12345), 0);
    EXPECT_EQ(codeOf([&] { AtomicFile file(link); }), EPERM);
    EXPECT_EQ(contentOf(target), "alt");
}

/// A user who may not see the descriptors of this process gives the content a name from the start.
TEST_F(FileOwnerTest, AFileOfSomebodyElseLosesTheGroupsRightsThatWereMeantForAnother) {
    put(target, "alt");
    ASSERT_EQ(::chown(target.c_str(), 12345, 23456), 0);
    const auto writeAsAnybody = [&] {
        ASSERT_EQ(::chmod(target.c_str(), 0666), 0);
        ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
        const AsAnybody user;
        writeAtomically(folder / "aktuell.pdf", "neu", AtomicFile::Access::Owner);
    };
    fs::create_symlink("Umsatz.pdf", folder / "aktuell.pdf"); // root's, which may be followed
    writeAsAnybody();
    EXPECT_EQ(contentOf(target), "neu");
    EXPECT_EQ(statusOf(target).st_uid, AsAnybody::kNobody);
    EXPECT_EQ(statusOf(target).st_mode & 07777, 0606U);
    ASSERT_EQ(::chown(target.c_str(), 12345, ::getegid()), 0);
    writeAsAnybody();
    EXPECT_EQ(statusOf(target).st_uid, AsAnybody::kNobody);
    EXPECT_EQ(statusOf(target).st_mode & 07777, 0666U) << "a group that can be kept keeps its rights";
    EXPECT_EQ(filesInFolder(), 2U);
}

} // namespace
} // namespace kvtdruck
