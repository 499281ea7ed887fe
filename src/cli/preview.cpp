#include "cli/preview.h"

#include "cli/cancellation.h"

#include <cerrno>
#include <chrono>
#include <ctime>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

namespace kvtdruck::cli {
namespace {

using Clock = std::chrono::steady_clock;

/// A viewer that ends this soon has handed the file over to one that was open already (or to the desktop): nobody
/// looks at a page for less.
constexpr auto kHandover = std::chrono::seconds(2);
constexpr auto kBetweenLooks = std::chrono::milliseconds(100);

enum class Input { Nothing, Enter, Ended };

Input waitForInput() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (::poll(&input, 1, static_cast<int>(kBetweenLooks.count())) <= 0)
        return Input::Nothing;
    char c = 0;
    if (::read(STDIN_FILENO, &c, 1) != 1)
        return Input::Ended;
    return c == '\n' ? Input::Enter : Input::Nothing;
}

void rest() {
    ::poll(nullptr, 0, static_cast<int>(kBetweenLooks.count()));
}

} // namespace

PreviewTurn::PreviewTurn(const std::filesystem::path& folder)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (folder_ >= 0 && ::flock(folder_, LOCK_EX) != 0 && errno == EINTR && !cancelled()) {
    }
}

PreviewTurn::~PreviewTurn() {
    const auto now = std::time(nullptr);
    while (std::time(nullptr) == now && !cancelled())
        rest();
    if (folder_ >= 0)
        ::close(folder_);
}

void waitForViewer(PosixProcesses& processes, std::int32_t process, Console& console) {
    const auto started = Clock::now();
    bool canAsk = true;
    bool handedOver = false;
    console.notice("Die Vorschau ist geöffnet; die Eingabetaste beendet sie.");
    while (!cancelled()) {
        if (!handedOver && !processes.isRunning(process)) {
            handedOver = canAsk && Clock::now() - started < kHandover;
            if (!handedOver)
                return;
        }
        if (handedOver && !canAsk)
            return;
        const auto input = canAsk ? waitForInput() : Input::Nothing;
        if (input == Input::Enter)
            return;
        if (input == Input::Ended)
            canAsk = false;
        if (!canAsk)
            rest();
    }
}

} // namespace kvtdruck::cli
