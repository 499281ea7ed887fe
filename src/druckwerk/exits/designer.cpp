#include "druckwerk/exits/designer.h"

#include "druckwerk/common/fault.h"
#include "druckwerk/exits/lent_files.h"
#include "druckwerk/exits/palette.h"
#include "druckwerk/layout/layout_check.h"
#include "druckwerk/layout/layout_generator.h"
#include "druckwerk/layout/layout_sample.h"
#include "platform/posix/input_file.h"
#include "platform/posix/memory_watch.h"

#include <cerrno>
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

/// Runs the designer on `file` and waits for its end; gives 0 or an errno. It gets an application of its own, so
/// that it does not hand the file over to an Inkscape that is already open and end at once.
int runDesigner(const std::filesystem::path& file) {
    std::string program = "inkscape";
    std::string application = "--app-id-tag=kvtdruck" + std::to_string(::getpid());
    std::string path = file.string();
    char* arguments[] = {program.data(), application.data(), path.data(), nullptr};
    pid_t process = 0;
    if (const int error = ::posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments, environ))
        return error;
    int status = 0;
    while (::waitpid(process, &status, 0) < 0)
        if (errno != EINTR)
            return errno;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0 : ECHILD;
}

/// A copy of the layout for the designer, with the palette beside its page. It lies beside the layout, where
/// pictures that the layout names are found, and is gone with the object.
class WorkingCopy {
  public:
    WorkingCopy(const std::filesystem::path& layout, const std::string& text) : shown_(text) {
        std::string name =
            (layout.parent_path() / (layout.stem().string() + "-wird-gestaltet-XXXXXX.svg")).string();
        const int descriptor = ::mkostemps(name.data(), 4, O_CLOEXEC); // behind the name comes ".svg"
        if (descriptor < 0)
            throw std::system_error(errno, std::generic_category());
        file_ = name;
        ::close(descriptor);
    }
    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;
    ~WorkingCopy() {
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }

    const std::filesystem::path& file() const { return file_; }
    void write() const { writeAtomically(file_, shown_, AtomicFile::Access::Mask); }
    /// What the user has saved; nothing where it is as it was shown.
    std::optional<std::string> saved() const {
        auto text = readInput(file_);
        return text == shown_ ? std::nullopt : std::optional(std::move(text));
    }

  private:
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

Designed openInDesigner(const DesignRequest& request) {
    const std::string svg = layoutToShow(request);
    const LentFiles lent(request, svg);
    // A damaged layout is opened as it is; the check says what is wrong with it.
    const WorkingCopy copy(request.layout, withPalette(svg, request.definitions).value_or(svg));
    copy.write();
    Designed designed;
    designed.error = runDesigner(copy.file());
    if (const auto saved = copy.saved()) {
        const auto layout = withoutPalette(*saved, designed.hasStrays).value_or(*saved);
        if (memoryWasRefused()) // the palette may still be in it, or more than it may be missing
            throw std::bad_alloc();
        writeAtomically(request.layout, layout, AtomicFile::Access::Mask);
    }
    return designed;
}

} // namespace

std::int32_t design(const DesignRequest& request, const FindingSink& findings, std::string& message) {
    Designed designed;
    try {
        designed = openInDesigner(request);
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
        findings(
            {false, 0, "Objekte, die in der Ebene „Feldliste“ lagen, liegen jetzt in der Ebene „Hintergrund“."});
    const auto& used = std::filesystem::exists(request.layout) ? request.layout : request.source;
    if (std::filesystem::exists(used))
        for (const auto& finding : checkLayout(used, request.definitions, false, request.behind))
            findings(finding);
    return 0;
}

} // namespace kvtdruck::druckwerk
