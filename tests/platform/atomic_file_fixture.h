// Files that are replaced, in a folder of their own.
#pragma once

#include "platform/posix/atomic_file.h"
#include "platform/posix/temporary_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <system_error>

namespace kvtdruck {

namespace fs = std::filesystem;

class AtomicFileTest : public ::testing::Test {
  protected:
    static void put(const fs::path& file, const std::string& text) {
        std::ofstream(file, std::ios::binary) << text;
    }
    static std::string contentOf(const fs::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static struct stat statusOf(const fs::path& file) {
        struct stat status {};
        EXPECT_EQ(::lstat(file.c_str(), &status), 0);
        return status;
    }
    static int codeOf(const std::function<void()>& step) {
        try {
            step();
        } catch (const std::system_error& error) {
            return error.code().value();
        }
        return 0;
    }
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
    }

    TemporaryFolder folder;
    fs::path target = folder.path() / "Umsatz.pdf";
};

} // namespace kvtdruck
