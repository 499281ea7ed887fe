// What the user sees: messages, the progress bar, questions at the terminal. All texts are UTF-8.
#pragma once

#include "druckwerk/druckwerk.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

namespace kvtdruck::cli {

class Console {
  public:
    Console() = default;
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    /// Leaves a clean line.
    ~Console() { clearProgress(); }

    /// An error, on standard error; `hasFailed` remembers it.
    void error(std::string_view text);
    /// A warning, on standard error.
    void warning(std::string_view text);
    /// A piece of news, on standard output.
    void notice(std::string_view text);
    /// Passes on what a work has written, its messages with `source` before each.
    void pass(std::string_view output, std::string_view errors, std::string_view source);
    /// Shows how far the job is, where standard error is a terminal.
    void progress(const druckwerk::Progress& progress);

    bool hasFailed() const { return failed_; }

    /// Asks for one line at standard input; nothing at its end, or when the user cancels with Ctrl-C.
    std::optional<std::string> ask(std::string_view question);
    /// The same without showing what is typed.
    std::optional<std::string> askSecretly(std::string_view question);

  private:
    void toStandardError(std::string_view prefix, std::string_view text);
    void clearProgress();

    /// Messages already shown: a report goes on after most errors and would repeat each one for every record.
    std::unordered_set<std::string> shown_;
    bool failed_ = false;
    bool barShown_ = false;
    std::chrono::steady_clock::time_point nextBar_;
};

} // namespace kvtdruck::cli
