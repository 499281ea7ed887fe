// The component's surroundings on Linux.
#pragma once

#include "platform/services.h"
#include "values/runtime_error.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvtdruck {

/// The locale of that name: "de-DE", "de_CH", "en_GB.UTF-8", … letter case aside. German, English (US and UK),
/// French, Swiss and Austrian German are known by themselves and written as Windows writes them; any other comes
/// from the system's installed locales, and is a run-time error 5 with a German description where it is not
/// installed.
Locale localeByName(std::string_view name);

/// The PDF viewers that are looked for, the first installed one first: those that show by themselves what replaces
/// their file, one that does so when it is told, one that does not, and whatever the desktop knows.
const std::vector<std::string>& commonPdfViewers();

/// What may be different from one process to another.
struct PosixSettings {
    Locale locale = germanLocale();
    /// Programs that can stand in for the preview viewer.
    std::vector<std::string> viewers = commonPdfViewers();
    /// The current local time; the system's clock where it is empty.
    std::function<Date()> clock = {};
    /// Called to process pending messages; nothing happens where it is empty.
    std::function<void()> pendingMessages = {};
};

/// Processes that were started here. They have a session of their own, so they outlive this process and its
/// terminal.
class PosixProcesses : public Processes {
  public:
    explicit PosixProcesses(std::vector<std::string> viewers) : viewers_(std::move(viewers)) {}
    ~PosixProcesses() override;

    Process start(StringView commandLine) override;
    /// Asks the process to end (SIGTERM). One whose id was not given out by `start` is left alone: it could be
    /// anybody's.
    void terminate(const Process& process) override;
    /// Whether the process `id`, started here, has not ended yet.
    bool isRunning(std::int32_t id);
    /// The program that stands in for the preview viewer; nothing where none is installed.
    std::optional<std::string> viewer() const;

  private:
    /// The program and arguments to start in place of the preview viewer.
    std::vector<std::string> viewerCommand(std::vector<std::string> arguments) const;
    /// Forgets the processes that have ended, and lets the system forget them.
    void reap();

    std::vector<std::string> viewers_;
    std::vector<std::int32_t> running_;
};

class PosixPlatform : public Platform {
  public:
    explicit PosixPlatform(PosixSettings settings = {});
    explicit PosixPlatform(Locale locale) : PosixPlatform(PosixSettings{.locale = std::move(locale)}) {}

    std::unique_ptr<FileSystem> createFileSystem() override;
    PosixProcesses& processes() override { return processes_; }
    void processPendingMessages() override;
    Date now() override;
    const Locale& locale() override { return settings_.locale; }

  private:
    PosixSettings settings_;
    PosixProcesses processes_;
};

/// The run-time error that belongs to a failed system call's error number `code` (as in `errno`).
RuntimeError runtimeErrorOf(int code);

/// The path that the component writes as `path` ("\" between its parts).
std::string posixPath(StringView path);

} // namespace kvtdruck
