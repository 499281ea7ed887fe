// kvtdruck as a user runs it: with a database, an application folder and a place for output of its own.
#pragma once

#include "cli/program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>

namespace kvtdruck::testing {

class ProgramTest : public ::testing::Test {
  protected:
    ProgramTest() {
        std::filesystem::create_directory(folder / "bin");
        std::filesystem::copy_file(kDemoDatabase, database());
        environment["XDG_DATA_HOME"] = (folder / "data").string();
        environment["PATH"] = (folder / "bin").string() + ":" + std::getenv("PATH");
    }

    std::string database() const { return (folder / "firma.sqlite").string(); }
    std::string output(const std::string& name) const { return (folder / name).string(); }
    std::filesystem::path layouts() const { return folder / "data" / "kvtdruck" / "DB" / "BerichteLLVT"; }
    /// Puts the installed layout of the turnover into the user's folder.
    void haveOwnLayout() const {
        std::filesystem::create_directories(layouts());
        std::filesystem::copy_file(KVT_SOURCE_FOLDER "/layouts/Umsatz.svg", layouts() / "Umsatz.svg");
    }
    /// The files that a run has left in the preview folder.
    std::size_t previewFiles() const {
        const std::filesystem::directory_iterator files(layouts() / "Preview");
        return std::size_t(std::distance(begin(files), end(files)));
    }

    /// The command line for a list of company 1 of the database.
    std::vector<std::string> command(const std::string& verb, const std::string& list,
                                     const std::vector<std::string>& more = {}) const {
        std::vector<std::string> result{kProgram, verb, list, "--firma", "1", "--datenbank", database()};
        result.insert(result.end(), more.begin(), more.end());
        return result;
    }

    Outcome kvtdruck(std::vector<std::string> arguments, const std::string& input = {}) const {
        arguments.insert(arguments.begin(), kProgram);
        return run(arguments, environment, input);
    }
    Outcome print(const std::string& list, const std::vector<std::string>& more,
                  const std::string& input = {}) const {
        return run(command("drucken", list, more), environment, input);
    }

    /// Changes the database.
    void execute(const std::string& sql) const {
        const auto result = run({"sqlite3", "-bail", database()}, {}, sql);
        ASSERT_EQ(result.exitCode, 0) << result.errors;
    }

    TemporaryFolder folder;
    Program::Environment environment;
};

} // namespace kvtdruck::testing
