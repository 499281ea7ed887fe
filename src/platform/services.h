// What the component asks of its surroundings: files, processes, the clock, pending messages. Paths carry "\"
// between their parts, as the system composes them; an implementation translates where its platform writes them
// differently.
#pragma once

#include "values/locale.h"
#include "values/text.h"
#include "values/variant.h"

#include <cstdint>
#include <memory>

namespace kvtdruck {

/// Files by path. A failing operation raises the run-time error of its cause (53, 58, 70, 75, 76, …).
class FileSystem {
  public:
    virtual ~FileSystem() = default;
    /// Whether a file (not a folder) of that path exists.
    virtual bool exists(StringView path) = 0;
    /// Deletes a file; a read-only one only when `force` is set (else run-time error 70).
    virtual void remove(StringView path, bool force) = 0;
    /// Gives the file a new name in its own folder; run-time error 53 without the file, 58 where the name is taken.
    virtual void rename(StringView path, StringView newName) = 0;
};

/// A process that was started here.
struct Process {
    /// 0: none.
    std::int32_t id = 0;
    /// Where the system gives the id of an ended process to another one as soon as nobody holds it, this does.
    std::shared_ptr<void> hold = nullptr;
};

class Processes {
  public:
    virtual ~Processes() = default;
    /// Starts a command line (program by search path, arguments in double quotes) with a normal, focused window,
    /// without waiting. Run-time error 53 where the program is not found.
    virtual Process start(StringView commandLine) = 0;
    /// Ends the process with exit code 0. One that has ended already is ignored.
    virtual void terminate(const Process& process) = 0;
};

/// The surroundings of the component within one process. It outlives every object of the component.
class Platform {
  public:
    virtual ~Platform() = default;
    /// A new file-system object; may raise run-time error 429.
    virtual std::unique_ptr<FileSystem> createFileSystem() = 0;
    virtual Processes& processes() = 0;
    /// Lets the host process its pending window messages once.
    virtual void processPendingMessages() = 0;
    /// The current date and time of the user, to the second.
    virtual Date now() = 0;
    /// The user's locale at this moment.
    virtual const Locale& locale() = 0;
};

} // namespace kvtdruck
