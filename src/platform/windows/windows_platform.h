// The component's surroundings on Windows.
#pragma once

#include "platform/services.h"
#include "platform/windows/pending_messages.h"
#include "values/runtime_error.h"

#include <cstdint>

namespace kvtdruck {

class WindowsProcesses : public Processes {
  public:
    Process start(StringView commandLine) override;
    void terminate(const Process& process) override;
};

class WindowsPlatform : public Platform {
  public:
    WindowsPlatform();

    std::unique_ptr<FileSystem> createFileSystem() override;
    WindowsProcesses& processes() override { return processes_; }
    void processPendingMessages() override { messages_.process(); }
    Date now() override;
    /// The user's settings, changes by hand included. They are read again when a second has passed since the last
    /// time, because every number that becomes a text asks for them.
    const Locale& locale() override;

  private:
    WindowsProcesses processes_;
    PendingMessages messages_;
    Locale locale_;
    std::uint64_t localeReadAt_;
};

/// The run-time error that belongs to a failed system call's error number `code` (as in `GetLastError`).
RuntimeError runtimeErrorOf(unsigned long code);

/// `path` as the system's file calls take it whatever its length: absolute, with the prefix that lifts the limit of
/// 260 letters where it needs one.
std::wstring nativePath(StringView path);

} // namespace kvtdruck
