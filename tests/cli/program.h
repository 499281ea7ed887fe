// Running programs from tests.
#pragma once

#include "platform/posix/temporary_folder.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kvtdruck::testing {

/// The program of this build, and its sample company.
extern const char* const kProgram;
extern const char* const kDemoDatabase;

struct Outcome {
    int exitCode = -1; ///< 128 plus the signal's number where one has ended the program
    std::string output;
    std::string errors;
};

/// A running program with its standard streams in files and pipes.
class Program {
  public:
    using Environment = std::map<std::string, std::string>;

    /// Starts a program (by search path) with the test's environment and `environment` on top.
    Program(const std::vector<std::string>& command, const Environment& environment = {});
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    /// A program that is still running is killed.
    ~Program();

    pid_t id() const { return id_; }
    void write(const std::string& input);
    /// What the program has written to standard output so far.
    std::string output() const;
    /// The same of standard error.
    std::string errors() const;
    void signal(int number) const;
    /// Closes standard input and waits for the end.
    Outcome wait();

  private:
    void closeInput();

    TemporaryFolder folder_;
    pid_t id_ = 0;
    int input_ = -1;
};

/// Runs a program to its end with `input` at its standard input.
Outcome run(const std::vector<std::string>& command, const Program::Environment& environment = {},
            const std::string& input = {});

std::string readFile(const std::filesystem::path& file);
void writeFile(const std::filesystem::path& file, const std::string& text);
/// As `writeFile`, for a script that can be run.
void writeScript(const std::filesystem::path& file, const std::string& text);

/// Waits until `condition` holds; gives false when it does not within a minute.
bool waitUntil(const std::function<bool()>& condition);

} // namespace kvtdruck::testing
