#include "cli/console.h"

#include "cli/cancellation.h"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <iterator>
#include <new>
#include <sstream>

#include <termios.h>
#include <unistd.h>

namespace kvtdruck::cli {
namespace {

constexpr int kBarWidth = 30;
constexpr auto kBetweenBars = std::chrono::milliseconds(100);

} // namespace

void Console::error(std::string_view text) {
    failed_ = true;
    toStandardError("Fehler: ", text);
}

void Console::warning(std::string_view text) {
    toStandardError("Hinweis: ", text);
}

void Console::notice(std::string_view text) {
    clearProgress();
    std::cout << text << std::endl;
}

void Console::pass(std::string_view output, std::string_view errors, std::string_view source) {
    if (!output.empty() || !errors.empty())
        clearProgress();
    std::cout << output << std::flush;
    std::istringstream lines{std::string(errors)};
    for (std::string line; std::getline(lines, line);)
        std::cerr << source << ": " << line << std::endl;
}

void Console::toStandardError(std::string_view prefix, std::string_view text) {
    try {
        if (!shown_.insert(std::string(prefix).append(text)).second)
            return;
    } catch (const std::bad_alloc&) { // it is said all the same, perhaps twice
    }
    clearProgress();
    std::cerr << prefix;
    std::ranges::copy_if(text, std::ostreambuf_iterator<char>(std::cerr), [](char c) { return c != '\r'; });
    std::cerr << std::endl;
}

void Console::progress(const druckwerk::Progress& progress) {
    static const bool isTerminal = ::isatty(STDERR_FILENO) != 0;
    if (!isTerminal)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now < nextBar_)
        return;
    nextBar_ = now + kBetweenBars;
    const auto filled = std::clamp(progress.percent * kBarWidth / 100, 0, kBarWidth);
    std::cerr << "\r\x1b[K" << progress.text << " [" << std::string(std::size_t(filled), '#')
              << std::string(std::size_t(kBarWidth - filled), ' ') << "]";
    if (progress.page > 0)
        std::cerr << " Seite " << progress.page;
    std::cerr << std::flush;
    barShown_ = true;
}

void Console::clearProgress() {
    if (barShown_)
        std::cerr << "\r\x1b[K" << std::flush;
    barShown_ = false;
}

std::optional<std::string> Console::ask(std::string_view question) {
    clearProgress();
    std::cout << question << std::flush;
    // Byte by byte, so that nothing behind the line is taken, and by the system call, which a signal interrupts.
    std::string line;
    char c = 0;
    while (!cancelled() && ::read(STDIN_FILENO, &c, 1) == 1) {
        if (c == '\n')
            return line;
        line += c;
    }
    return std::nullopt;
}

std::optional<std::string> Console::askSecretly(std::string_view question) {
    termios shown{};
    const bool isTerminal = ::tcgetattr(STDIN_FILENO, &shown) == 0;
    if (!isTerminal)
        return ask(question);
    auto hidden = shown;
    hidden.c_lflag &= ~tcflag_t(ECHO);
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    auto answer = ask(question);
    ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
    std::cout << std::endl;
    return answer;
}

} // namespace kvtdruck::cli
