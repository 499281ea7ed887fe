#include "cli/program.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvtdruck::testing {

const char* const kProgram = KVT_PROGRAM;
const char* const kDemoDatabase = KVT_DEMO_DATABASE;

namespace {

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result(texts.size() + 1);
    std::ranges::transform(texts, result.begin(), [](std::string& text) { return text.data(); });
    return result;
}

std::vector<std::string> withVariables(const Program::Environment& variables) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text = *entry;
        if (!variables.contains(text.substr(0, text.find('='))))
            result.push_back(text);
    }
    for (const auto& [name, value] : variables)
        result.push_back(std::string(name).append("=").append(value));
    return result;
}

} // namespace

Program::Program(const std::vector<std::string>& command, const Environment& environment) {
    auto arguments = command;
    auto variables = withVariables(environment);
    int input[2];
    if (::pipe2(input, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category());
    input_ = input[1];
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    const auto capture = [&](int stream, const char* name) {
        posix_spawn_file_actions_addopen(&actions, stream, (folder_ / name).c_str(), O_WRONLY | O_CREAT, 0600);
    };
    capture(STDOUT_FILENO, "output");
    capture(STDERR_FILENO, "errors");
    const int error = ::posix_spawnp(&id_, arguments[0].c_str(), &actions, nullptr, pointers(arguments).data(),
                                     pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    if (error != 0)
        throw std::system_error(error, std::generic_category(), command[0]);
}

Program::~Program() {
    closeInput();
    if (id_ > 0) {
        ::kill(id_, SIGKILL);
        ::waitpid(id_, nullptr, 0);
    }
}

void Program::write(const std::string& text) {
    if (::write(input_, text.data(), text.size()) != ssize_t(text.size()))
        throw std::system_error(errno, std::generic_category());
}

std::string Program::output() const {
    return readFile(folder_ / "output");
}

std::string Program::errors() const {
    return readFile(folder_ / "errors");
}

void Program::signal(int number) const {
    ::kill(id_, number);
}

Outcome Program::wait() {
    closeInput();
    int status = 0;
    ::waitpid(id_, &status, 0);
    id_ = 0;
    const int exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {exitCode, output(), errors()};
}

void Program::closeInput() {
    if (input_ >= 0)
        ::close(input_);
    input_ = -1;
}

Outcome run(const std::vector<std::string>& command, const Program::Environment& environment,
            const std::string& input) {
    Program program(command, environment);
    if (!input.empty())
        program.write(input);
    return program.wait();
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void writeFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    if (!stream.flush())
        throw std::runtime_error("can't write " + file.string());
}

void writeScript(const std::filesystem::path& file, const std::string& text) {
    writeFile(file, "#!/bin/sh\n" + text);
    std::filesystem::permissions(file, std::filesystem::perms::owner_all | std::filesystem::perms::group_read |
                                           std::filesystem::perms::group_exec |
                                           std::filesystem::perms::others_read |
                                           std::filesystem::perms::others_exec);
}

bool waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

} // namespace kvtdruck::testing
