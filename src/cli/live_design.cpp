#include "cli/live_design.h"

#include "cli/application_folder.h"
#include "cli/cancellation.h"
#include "cli/child_process.h"
#include "cli/layout_store.h"
#include "cli/option_values.h"
#include "platform/posix/atomic_file.h"
#include "platform/posix/input_file.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/temporary_folder.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <functional>
#include <iostream>
#include <optional>
#include <system_error>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvtdruck::cli {
namespace {

constexpr int kPause = 100; // milliseconds

/// A process that does one work and ends with it. It is cancelled with this one, and gone before this one's own
/// grace ends.
class Child {
  public:
    explicit Child(const std::function<int()>& work) : id_(beginProcess(work, 2)) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() { wait(); }

    /// Waits for its end, having passed on what the user asks; gives its exit code.
    int wait() {
        int status = 0;
        while (id_ > 0) {
            passOnCancellation();
            const auto ended = ::waitpid(id_, &status, WNOHANG);
            if (ended == 0)
                ::poll(nullptr, 0, kPause / 10);
            else if (ended == id_ || errno != EINTR)
                id_ = 0;
        }
        if (WIFEXITED(status))
            return WEXITSTATUS(status);
        std::cerr << crashText(WTERMSIG(status)) << std::flush;
        return kFailed;
    }
    void passOnCancellation() {
        if (passedOn_ || !cancelled())
            return;
        passedOn_ = true;
        ::kill(id_, SIGTERM);
    }

  private:
    pid_t id_ = 0;
    bool passedOn_ = false;
};

/// Two ends over which processes take turns.
class Turns {
  public:
    void closeEnd(std::size_t end) { ends_[end].close(); }
    void give(std::size_t end) const { ::send(ends_[end].number(), "", 1, MSG_NOSIGNAL); }
    /// Waits for the turn, calling `meanwhile` again and again; false where the other end was closed.
    bool take(
        std::size_t end, const std::function<void()>& meanwhile = [] {}) const {
        pollfd waiting{ends_[end].number(), POLLIN, 0};
        while (::poll(&waiting, 1, kPause) <= 0)
            meanwhile();
        char c = 0;
        return ::recv(ends_[end].number(), &c, 1, 0) == 1;
    }

  private:
    std::array<Descriptor, 2> ends_ = openChannel();
};

/// Reads its file anew when it is sent SIGHUP (https://manpages.debian.org/bookworm/mupdf/mupdf.1.en.html,
/// Signals).
constexpr const char* kToldBySignal = "mupdf";
/// Does not look whether its file has changed unless its settings say so.
constexpr const char* kToldByUser = "qpdfview";

/// The printed pages, and the viewer that shows them; both are gone with the object.
class Pages {
  public:
    explicit Pages(std::filesystem::path file) : file_(std::move(file)), processes_(commonPdfViewers()) {
        std::filesystem::create_directories(file_.parent_path());
    }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages() {
        processes_.terminate(viewer_);
        std::error_code ignored;
        std::filesystem::remove(file_, ignored);
    }

    const std::filesystem::path& file() const { return file_; }

    /// Whether there are others than at the last call. A viewer is started for the first ones, and shows those that
    /// replace them.
    bool areNew(Console& console) {
        struct stat now {};
        if (::stat(file_.c_str(), &now) != 0 || now.st_ino == last_)
            return false;
        if (last_ == 0)
            show(console);
        else if (processes_.viewer() == kToldBySignal && processes_.isRunning(viewer_.id))
            ::kill(viewer_.id, SIGHUP);
        last_ = now.st_ino;
        return true;
    }

  private:
    void show(Console& console) {
        try {
            viewer_ = processes_.start(u"llview12.exe \"" + fromUtf8(file_.string()) + u"\"");
            if (processes_.viewer() == kToldByUser)
                console.notice("qpdfview zeigt neue Seiten erst nach der Taste F5, oder von selbst, wenn seine "
                               "Einstellungen das automatische Neuladen vorsehen.");
        } catch (const RuntimeError& error) {
            console.warning("Die Seiten liegen in " + file_.string() + "; sie können nicht gezeigt werden (" +
                            toUtf8(error.description()) + ").");
        }
    }

    std::filesystem::path file_;
    PosixProcesses processes_;
    Process viewer_;
    ino_t last_ = 0;
};

/// The designer works in a process of its own, as every print does, so that none finds anything of another's.
class LiveDesign {
  public:
    LiveDesign(const Options& options, PrintRequest request, Console& console)
        : options_(options), request_(std::move(request)), console_(console),
          folder_(prepareApplicationFolder(options.folder)),
          pages_(layoutFolder(folder_) / "Preview" /
                 (std::string(request_.report->listName) + "-" + std::to_string(::getpid()) + ".pdf")) {}

    int run() {
        if (request_.values && !std::filesystem::is_regular_file(*request_.values))
            refuse("--live liest die Werte bei jedem Druck neu und braucht sie in einer Datei.");
        Child designer([this] { return openDesigner(); });
        turns_.closeEnd(kDesigner);
        while (turns_.take(kPrinter, [&] { designer.passOnCancellation(); })) {
            print();
            turns_.give(kPrinter);
        }
        const int code = designer.wait();
        return cancelled() ? kCancelled : code == kDone && !printed_ ? kFailed : code;
    }

  private:
    enum End : std::size_t { kDesigner, kPrinter };

    int openDesigner() {
        turns_.closeEnd(kPrinter);
        request_.saved = [this](const std::string& layout) {
            writeAtomically(exchange_ / "layout.svg", layout, AtomicFile::Access::Owner);
            turns_.give(kDesigner);
            turns_.take(kDesigner);
        };
        Console console;
        return withErrorsTold(console, [&] { return runReport(options_, request_, console); });
    }

    void print() {
        if (cancelled())
            return;
        Child printer([this] { return printSaved(); });
        const int code = printer.wait();
        printed_ = pages_.areNew(console_);
        if (!printed_ && code != kCancelled)
            console_.notice("Nicht gedruckt; die Seiten bleiben, wie sie waren.");
    }

    /// A check that prints into the pages' file, which is replaced where nothing keeps the layout from printing.
    int printSaved() {
        auto options = options_;
        options.command = Command::Check;
        options.record.reset(); // which is the designer's
        auto request = request_;
        request.output = pages_.file();
        request.layout = {readInput(exchange_ / "layout.svg"), LayoutStore(folder_).own(request.report->listName)};
        Console console;
        return withErrorsTold(console, [&] { return runReport(options, request, console); });
    }

    const Options& options_;
    PrintRequest request_;
    Console& console_;
    std::filesystem::path folder_;
    TemporaryFolder exchange_; ///< what was saved, on its way to the print
    Turns turns_;
    Pages pages_;
    bool printed_ = false; ///< the last save
};

} // namespace

int designLive(const Options& options, PrintRequest request, Console& console) {
    return LiveDesign(options, std::move(request), console).run();
}

} // namespace kvtdruck::cli
