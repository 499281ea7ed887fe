#include "druckwerk/exits/designer.h"

#include "druckwerk/exits/palette.h"
#include "druckwerk/layout/layout_check.h"
#include "druckwerk/layout/layout_generator.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <optional>
#include <sstream>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvtdruck::druckwerk {
namespace {

std::optional<std::string> readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        return std::nullopt;
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

bool writeFile(const std::filesystem::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    return !stream.fail();
}

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

/// The layout while it is in the designer: with the palette beside its page. It is put back afterwards, without the
/// palette where the user has saved it, else as it was.
class LayoutInDesign {
  public:
    LayoutInDesign(const DesignRequest& request, const std::string& svg, bool isNew)
        : file_(request.layout), original_(svg), isNew_(isNew) {
        // A damaged layout is opened as it is; the check says what is wrong with it.
        shown_ = withPalette(svg, request.definitions).value_or(svg);
    }

    /// Whether the user has left objects in the palette's layer.
    bool hasStrays() const { return hasStrays_; }

    bool open() const { return writeFile(file_, shown_); }

    /// Gives false where the file can't be read or written.
    bool putBack() {
        const auto saved = readFile(file_);
        if (!saved)
            return false;
        if (*saved != shown_)
            return writeFile(file_, withoutPalette(*saved, hasStrays_).value_or(*saved));
        if (isNew_)
            return std::filesystem::remove(file_);
        return writeFile(file_, original_);
    }

  private:
    std::filesystem::path file_;
    std::string original_;
    std::string shown_;
    bool isNew_;
    bool hasStrays_ = false;
};

} // namespace

std::int32_t design(const DesignRequest& request, const FindingSink& findings, std::string& message) {
    const auto existing = readFile(request.layout);
    LayoutInDesign layout(request, existing ? *existing : generateLayout(request.definitions), !existing);
    if (!layout.open()) {
        message = "Die Layoutdatei " + request.layout.string() + " kann nicht geschrieben werden.";
        return kDesignFailed;
    }
    const int error = runDesigner(request.layout);
    if (!layout.putBack())
        message = "Die Layoutdatei " + request.layout.string() + " kann nicht geschrieben werden.";
    else if (error == ENOENT)
        message = "Das Zeichenprogramm Inkscape ist nicht installiert.";
    else if (error != 0)
        message = "Das Zeichenprogramm Inkscape wurde mit einem Fehler beendet.";
    if (!message.empty())
        return kDesignFailed;
    if (layout.hasStrays())
        findings(
            {false, 0, "Objekte, die in der Ebene „Feldliste“ lagen, liegen jetzt in der Ebene „Hintergrund“."});
    if (std::filesystem::exists(request.layout))
        for (const auto& finding : checkLayout(request.layout, request.definitions))
            findings(finding);
    return 0;
}

} // namespace kvtdruck::druckwerk
