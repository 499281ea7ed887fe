#include "platform/as_anybody.h"
#include "platform/atomic_file_fixture.h"

#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace kvtdruck {
namespace {

TEST_F(AtomicFileTest, AppearsWhenItIsCommitted) {
    AtomicFile file(target);
    file.write("neu");
    EXPECT_FALSE(fs::exists(target));
    file.commit();
    EXPECT_EQ(contentOf(target), "neu");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(AtomicFileTest, WhatWasThereStaysUntilThen) {
    put(target, "alt");
    {
        AtomicFile file(target);
        file.write("neu");
        EXPECT_EQ(contentOf(target), "alt");
    }
    EXPECT_EQ(contentOf(target), "alt");
    EXPECT_EQ(filesInFolder(), 1U) << "nothing is left of what was not committed";
}

TEST_F(AtomicFileTest, ANewDocumentIsItsOwnersAlone) {
    writeAtomically(target, "neu", AtomicFile::Access::Owner);
    EXPECT_EQ(statusOf(target).st_mode & 07777, 0600U);
}

TEST_F(AtomicFileTest, OtherNewFilesAreAsTheMaskSays) {
    const mode_t mask = ::umask(027);
    writeAtomically(target, "neu", AtomicFile::Access::Mask);
    ::umask(mask);
    EXPECT_EQ(statusOf(target).st_mode & 07777, 0640U);
}

TEST_F(AtomicFileTest, AReplacedFileKeepsItsMode) {
    for (const mode_t mode : {0600U, 0640U, 0664U}) {
        put(target, "alt");
        ASSERT_EQ(::chmod(target.c_str(), mode), 0);
        writeAtomically(target, "neu", AtomicFile::Access::Mask);
        EXPECT_EQ(contentOf(target), "neu");
        EXPECT_EQ(statusOf(target).st_mode & 07777, mode);
    }
}

TEST_F(AtomicFileTest, ALinkStaysOneAndItsFileIsReplaced) {
    const auto link = folder.path() / "aktuell.pdf";
    put(target, "alt");
    fs::create_symlink("Umsatz.pdf", link);
    writeAtomically(link, "neu", AtomicFile::Access::Owner);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(contentOf(target), "neu");
}

TEST_F(AtomicFileTest, ARingOfLinksIsRefused) {
    fs::create_symlink("b", folder.path() / "a");
    fs::create_symlink("a", folder.path() / "b");
    EXPECT_EQ(codeOf([&] { AtomicFile file(folder.path() / "a"); }), ELOOP);
}

TEST_F(AtomicFileTest, MuchContentAndSmallPiecesKeepTheirOrder) {
    AtomicFile file(target);
    std::string text;
    for (int i = 0; i < 30'000; ++i) {
        const std::string piece = std::to_string(i) + "\n";
        file.write(piece);
        text += piece;
    }
    file.commit();
    EXPECT_EQ(contentOf(target), text);
}

TEST_F(AtomicFileTest, ANameAloneIsOfTheCurrentFolder) {
    const auto before = fs::current_path();
    fs::current_path(folder.path());
    writeAtomically("Umsatz.pdf", "neu", AtomicFile::Access::Owner);
    fs::current_path(before);
    EXPECT_EQ(contentOf(target), "neu");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(AtomicFileTest, APlaceThatIsTakenMeanwhileStaysAndNothingIsLeftBesideIt) {
    std::optional<AtomicFile> file(target);
    file->write("neu");
    fs::create_directory(target);
    EXPECT_EQ(codeOf([&] { file->commit(); }), EISDIR);
    file.reset();
    EXPECT_TRUE(fs::is_directory(target));
    EXPECT_EQ(filesInFolder(), 1U);
    const auto gone = folder / "gone";
    fs::create_directory(gone);
    AtomicFile other(gone / "Umsatz.pdf");
    fs::remove(gone);
    EXPECT_EQ(codeOf([&] { other.commit(); }), ENOENT);
}

TEST_F(AtomicFileTest, WithoutTheRightToWriteNothingChanges) {
    put(target, "alt");
    ASSERT_EQ(::chmod(target.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    {
        const AsAnybody user;
        EXPECT_EQ(codeOf([&] { AtomicFile file(target); }), EACCES) << "a file that is read-only";
    }
    ASSERT_EQ(::chmod(folder.path().c_str(), 0555), 0);
    {
        const AsAnybody user;
        EXPECT_EQ(codeOf([&] { AtomicFile file(folder / "neu.pdf"); }), EACCES) << "a folder that is";
    }
    ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
    EXPECT_EQ(contentOf(target), "alt");
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(AtomicFileTest, OneFileHasManyNames) {
    put(target, "alt");
    fs::create_symlink(target, folder / "Verweis");
    fs::create_hard_link(target, folder / "zweiter Name");
    put(folder / "andere", "alt");
    EXPECT_TRUE(isSameFile(target, folder / "Verweis"));
    EXPECT_TRUE(isSameFile(target, folder / "zweiter Name"));
    EXPECT_FALSE(isSameFile(target, folder / "andere"));
    EXPECT_FALSE(isSameFile(target, folder / "fehlt"));
    EXPECT_FALSE(isSameFile(folder / "fehlt", folder / "fehlt"));
}

TEST_F(AtomicFileTest, AFolderOrAMissingOneIsAnError) {
    EXPECT_EQ(codeOf([&] { AtomicFile file(folder.path()); }), EISDIR);
    EXPECT_EQ(codeOf([&] { AtomicFile file(folder.path() / "fehlt" / "a"); }), ENOENT);
    EXPECT_EQ(codeOf([&] { AtomicFile file("/proc/self/fd/"); }), EISDIR);
    EXPECT_EQ(codeOf([&] { AtomicFile file("/proc/self/fd/1x"); }), ENOENT) << "no descriptor has such a name";
    EXPECT_EQ(codeOf([&] { AtomicFile file("/proc/self/fd/98765"); }), EBADF);
}

TEST_F(AtomicFileTest, APipeWithANameIsWrittenToAndStays) {
    ASSERT_EQ(::mkfifo(target.c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = contentOf(target); });
    writeAtomically(target, "neu", AtomicFile::Access::Owner);
    reader.join();
    EXPECT_EQ(read, "neu");
    EXPECT_TRUE(fs::is_fifo(target));
}

TEST_F(AtomicFileTest, AFullDeviceIsAnErrorAndStays) {
    EXPECT_EQ(codeOf([&] { writeAtomically("/dev/full", "neu", AtomicFile::Access::Owner); }), ENOSPC);
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

/// A descriptor that is named by a path is written to where it stands, be it a plain file.
TEST_F(AtomicFileTest, ADescriptorOfThisProcessIsWrittenToWhereItStands) {
    put(target, "davor ");
    const int descriptor = ::open(target.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    const auto before = statusOf(target).st_ino;
    const auto link = folder.path() / "ausgabe";
    fs::create_symlink("/proc/self/fd/" + std::to_string(descriptor), link);
    writeAtomically(link, "neu", AtomicFile::Access::Owner);
    writeAtomically("/dev/fd/" + std::to_string(descriptor), "!", AtomicFile::Access::Owner);
    ::close(descriptor);
    EXPECT_EQ(contentOf(target), "davor neu!");
    EXPECT_EQ(statusOf(target).st_ino, before);
    EXPECT_TRUE(fs::is_symlink(link));
}

TEST_F(AtomicFileTest, AMinusIsStandardOutput) {
    put(target, "davor ");
    const int before = ::dup(STDOUT_FILENO);
    const int file = ::open(target.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    ASSERT_EQ(::dup2(file, STDOUT_FILENO), STDOUT_FILENO);
    writeAtomically("-", "neu", AtomicFile::Access::Owner);
    ASSERT_EQ(::dup2(before, STDOUT_FILENO), STDOUT_FILENO);
    ::close(before);
    ::close(file);
    EXPECT_EQ(contentOf(target), "davor neu");
    EXPECT_FALSE(fs::exists("-"));
}

} // namespace
} // namespace kvtdruck
