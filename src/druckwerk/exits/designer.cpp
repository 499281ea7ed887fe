#include "druckwerk/exits/designer.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/exits/file_watch.h"
#include "druckwerk/exits/lent_files.h"
#include "druckwerk/exits/palette.h"
#include "druckwerk/layout/layout_check.h"
#include "druckwerk/layout/layout_generator.h"
#include "druckwerk/layout/layout_sample.h"
#include "platform/posix/input_file.h"
#include "platform/posix/memory_watch.h"
#include "platform/posix/posix_error.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <new>
#include <optional>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvtdruck::druckwerk {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// How long a designer that was asked to end may take for it.
constexpr auto kFarewell = 1s;
/// What is no whole layout for this long is what the user has saved, and not a part of it.
constexpr auto kPatience = 1s;

/// The designer on a file. It gets an application of its own, so that it does not hand the file over to an Inkscape
/// that is already open and end at once.
class DesignerProcess {
  public:
    explicit DesignerProcess(const std::filesystem::path& file) {
        std::string program = "inkscape";
        std::string application = "--app-id-tag=kvtdruck" + std::to_string(::getpid());
        std::string path = file.string();
        char* arguments[] = {program.data(), application.data(), path.data(), nullptr};
        error_ = ::posix_spawnp(&id_, arguments[0], nullptr, nullptr, arguments, environ);
    }
    DesignerProcess(const DesignerProcess&) = delete;
    DesignerProcess& operator=(const DesignerProcess&) = delete;
    ~DesignerProcess() {
        if (isRunning())
            ::kill(id_, SIGKILL);
    }

    bool isRunning() {
        if (error_ || ended_)
            return false;
        int status = 0;
        const auto ended = ::waitpid(id_, &status, WNOHANG);
        if (ended == 0 || (ended < 0 && errno == EINTR))
            return true;
        ended_ = true;
        error_ = ended < 0 ? errno : WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : ECHILD;
        return false;
    }
    /// Asks it to end, and ends it where it does not.
    void stop() {
        if (!stopped_) {
            stopped_ = Clock::now();
            ::kill(id_, SIGTERM);
        } else if (Clock::now() - *stopped_ > kFarewell) {
            ::kill(id_, SIGKILL);
        }
    }
    /// 0 or an errno, once it has ended.
    int error() const { return error_; }

  private:
    pid_t id_ = 0;
    int error_ = 0;
    bool ended_ = false;
    std::optional<Clock::time_point> stopped_;
};

/// What a designer has made of a layout.
struct Drawn {
    std::string layout; ///< without the palette
    bool isWhole;       ///< it is well-formed XML
    bool hasStrays = false;
};

Drawn drawnIn(const std::string& svg) {
    Drawn drawn{svg, false};
    if (auto layout = withoutPalette(svg, drawn.hasStrays)) {
        drawn.layout = std::move(*layout);
        drawn.isWhole = true;
    }
    if (memoryWasRefused()) // the palette may still be in it, or more than it may be missing
        throw std::bad_alloc();
    return drawn;
}

/// A copy of the layout for the designer, with the palette beside its page. It lies beside the layout, where
/// pictures that the layout names are found, and is gone with the object.
class WorkingCopy {
  public:
    WorkingCopy(const std::filesystem::path& layout, const std::string& text) : WorkingCopy(layout) {
        shown_ = text; // from here on the file goes whatever fails
        writeAtomically(file_, shown_, AtomicFile::Access::Mask);
    }
    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;
    ~WorkingCopy() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }

    const std::filesystem::path& file() const { return file_; }
    const std::string& shown() const { return shown_; }
    /// What the user has saved; nothing where it is as it was shown.
    std::optional<std::string> saved() const {
        auto text = readInput(file_);
        return text == shown_ ? std::nullopt : std::optional(std::move(text));
    }

  private:
    explicit WorkingCopy(const std::filesystem::path& layout) {
        std::string name =
            (layout.parent_path() / (layout.stem().string() + "-wird-gestaltet-XXXXXX.svg")).string();
        file_ = name;
        const int descriptor = ::mkostemps(name.data(), 4, O_CLOEXEC); // behind the name comes ".svg"
        if (descriptor < 0)
            throwSystemError();
        ::close(descriptor);
        file_ = name;
    }

    std::filesystem::path file_;
    std::string shown_;
};

/// What became of a layout in the designer.
struct Designed {
    int error = 0; ///< an errno of the designer
    bool hasStrays = false;
};

std::string layoutToShow(const DesignRequest& request) {
    if (!std::filesystem::exists(request.source))
        return generateLayout(request.definitions);
    std::string svg = readInput(request.source);
    return request.sample == nullptr ? svg : withSample(svg, *request.sample).value_or(svg);
}

/// A designer while it is open, and what is saved in it.
class Session {
  public:
    Session(const DesignRequest& request, const Designing& designing, const std::string& svg)
        : request_(request), designing_(designing),
          // A damaged layout is opened as it is; the check says what is wrong with it.
          copy_(request.layout, withPalette(svg, request.definitions, designing.notes).value_or(svg)),
          watch_(copy_.file()), told_(copy_.shown()) {
        if (designing_.saved)
            designing_.saved(svg);
    }

    Designed run() {
        DesignerProcess designer(copy_.file());
        while (designer.isRunning()) {
            if (isCancelled())
                designer.stop();
            const bool changed = watch_.hasChanged();
            if (designing_.saved && (changed || waitsForMore_))
                lookAtSaved();
        }
        Designed designed{isCancelled() ? 0 : designer.error()};
        if (const auto saved = copy_.saved())
            keep(*saved, designed);
        return designed;
    }

  private:
    bool isCancelled() const { return designing_.cancelled != nullptr && *designing_.cancelled; }

    /// A file that is missing or not whole may still be in the making.
    void lookAtSaved() {
        std::error_code error;
        if (!std::filesystem::exists(copy_.file(), error))
            return;
        const auto text = readInput(copy_.file());
        waitsForMore_ = false;
        if (text == told_)
            return;
        const auto drawn = drawnIn(text);
        waitsForMore_ = !drawn.isWhole && !watch_.rests(kPatience);
        if (!waitsForMore_)
            tell(text, drawn);
    }

    void tell(const std::string& text, const Drawn& drawn) {
        told_ = text;
        if (drawn.isWhole)
            whole_ = drawn;
        designing_.saved(drawn.layout);
    }

    /// Gives what was saved the layout's place. A designer that was made to end may have been writing; then what
    /// was whole last is kept.
    void keep(const std::string& saved, Designed& designed) {
        auto drawn = drawnIn(saved);
        if (!drawn.isWhole && isCancelled()) {
            if (!whole_)
                return;
            drawn = *whole_;
        } else if (designing_.saved && saved != told_) {
            tell(saved, drawn);
        }
        designed.hasStrays = drawn.hasStrays;
        writeAtomically(request_.layout, drawn.layout, AtomicFile::Access::Mask);
    }

    const DesignRequest& request_;
    const Designing& designing_;
    WorkingCopy copy_;
    FileWatch watch_;
    std::string told_;
    std::optional<Drawn> whole_; ///< what was whole last, of what was told
    bool waitsForMore_ = false;
};

Designed openInDesigner(const DesignRequest& request, const Designing& designing) {
    const std::string svg = layoutToShow(request);
    const LentFiles lent(request, svg);
    return Session(request, designing, svg).run();
}

} // namespace

std::int32_t design(const DesignRequest& request, const Designing& designing, std::string& message) {
    Designed designed;
    try {
        designed = openInDesigner(request, designing);
    } catch (const std::system_error& error) {
        message = "Die Layoutdatei " + request.layout.string() +
                  " kann nicht geschrieben werden: " + reasonForWriting(error.code().value()) + ".";
        return kDesignFailed;
    }
    if (designed.error == ENOENT)
        message = "Das Zeichenprogramm Inkscape ist nicht installiert.";
    else if (designed.error != 0)
        message = "Das Zeichenprogramm Inkscape wurde mit einem Fehler beendet.";
    if (!message.empty())
        return kDesignFailed;
    if (designed.hasStrays)
        designing.find(
            {false, 0, "Objekte, die in der Ebene „Feldliste“ lagen, liegen jetzt in der Ebene „Hintergrund“."});
    const auto& used = std::filesystem::exists(request.layout) ? request.layout : request.source;
    if (!designing.saved && std::filesystem::exists(used))
        for (const auto& finding : checkLayout(used, request.definitions, false, request.behind))
            designing.find(finding);
    return 0;
}

} // namespace kvtdruck::druckwerk
