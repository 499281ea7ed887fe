#include "platform/posix/input_file.h"

#include "platform/posix/atomic_file.h"
#include "platform/posix/temporary_folder.h"
#include "platform/signals.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kvtdruck {
namespace {

class InputFileTest : public ::testing::Test {
  protected:
    int errorOf(const std::filesystem::path& file, std::size_t most = 100) const {
        try {
            readInput(file, most, &cancelled);
        } catch (const std::system_error& error) {
            return error.code().value();
        }
        return 0;
    }
    std::filesystem::path pipe() const {
        auto name = folder / "pipe";
        EXPECT_EQ(::mkfifo(name.c_str(), 0600), 0);
        return name;
    }

    TemporaryFolder folder;
    std::atomic<bool> cancelled = false;
};

TEST_F(InputFileTest, AFileIsReadWholeAndNoFurtherThanItMay) {
    const std::string text(100, 'x');
    std::ofstream(folder / "file") << text;
    EXPECT_EQ(readInput(folder / "file", 100), text);
    EXPECT_EQ(errorOf(folder / "file", 99), EFBIG);
    EXPECT_EQ(errorOf("/dev/zero", 1'000'000), EFBIG);
}

TEST_F(InputFileTest, WhatCanNotBeReadSaysWhy) {
    EXPECT_EQ(errorOf(folder / "none"), ENOENT);
    EXPECT_EQ(errorOf(folder.path()), EISDIR);
}

TEST_F(InputFileTest, APipeIsReadToItsEnd) {
    const auto name = pipe();
    std::thread writer([&] {
        const int file = ::open(name.c_str(), O_WRONLY);
        for (const char* part : {"a", "b"})
            EXPECT_EQ(::write(file, part, 1), 1);
        ::close(file);
    });
    EXPECT_EQ(readInput(name, 100), "ab");
    writer.join();
}

TEST_F(InputFileTest, SignalsEndNeitherReadingNorWriting) {
    const auto name = pipe();
    const std::string much(1'000'000, 'x'); // more than a pipe holds
    std::string read;
    std::thread reader([&] {
        Signals::spareThisThread();
        const int file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
        ::usleep(20'000);
        std::array<char, 1 << 16> piece{};
        for (ssize_t count = 0; (count = ::read(file, piece.data(), piece.size())) > 0;)
            read.append(piece.data(), static_cast<std::size_t>(count));
        ::close(file);
    });
    const int file = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
    {
        const Signals signals;
        writeAll(file, much);
    }
    ::close(file);
    reader.join();
    EXPECT_EQ(read, much);
    std::thread writer([&] {
        Signals::spareThisThread();
        const int out = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
        ::usleep(20'000);
        EXPECT_EQ(::write(out, "ab", 2), 2);
        ::close(out);
    });
    {
        const Signals signals;
        EXPECT_EQ(readInput(name, 100), "ab");
    }
    writer.join();
}

/// A process that may have no open files can't wait for one either (poll(2), EINVAL).
TEST_F(InputFileTest, WhereWaitingIsRefusedTheSystemSaysWhy) {
    const auto name = pipe();
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    int file = -1;
    std::thread writer([&] {
        file = ::open(name.c_str(), O_WRONLY | O_CLOEXEC); // as soon as it is being read
        const rlimit none{0, before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    });
    const int error = errorOf(name);
    writer.join();
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    ::close(file);
    EXPECT_EQ(error, EINVAL);
}

TEST_F(InputFileTest, WaitingForAPipeCanBeCancelled) {
    const auto name = pipe();
    cancelled = true;
    EXPECT_EQ(errorOf(name), ECANCELED);
}

} // namespace
} // namespace kvtdruck
