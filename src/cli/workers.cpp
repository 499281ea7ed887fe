#include "cli/workers.h"

#include "cli/cancellation.h"
#include "cli/child_process.h"
#include "cli/outcome.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <list>
#include <optional>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kvtdruck::cli {
namespace {

/// What a process writes to one of its standard streams, kept in memory.
class Capture {
  public:
    explicit Capture(const char* name) : file_(::memfd_create(name, MFD_CLOEXEC)) {}
    int number() const { return file_.number(); }
    /// What has come since the last call.
    std::string next() {
        std::string text;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = ::pread(file_.number(), buffer.data(), buffer.size(), told_)) > 0;) {
            text.append(buffer.data(), std::size_t(count));
            told_ += count;
        }
        return text;
    }

  private:
    Descriptor file_;
    off_t told_ = 0;
};

struct Answer {
    std::size_t work;
    int exitCode;
};

/// The life of a process that works: a number comes, its work is done, the answer goes back.
int serve(int channel, const std::function<int(std::size_t)>& work) {
    std::size_t number = 0;
    while (::recv(channel, &number, sizeof number, 0) == ssize_t(sizeof number)) {
        const Answer answer{number, work(number)};
        std::cout.flush();
        std::cerr.flush();
        if (::send(channel, &answer, sizeof answer, MSG_NOSIGNAL) != ssize_t(sizeof answer))
            break;
    }
    return kDone;
}

class Worker {
  public:
    explicit Worker(const std::function<int(std::size_t)>& work) : Worker(openChannel(), work) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        // Closing would not do: the processes begun later hold a copy of this end.
        ::shutdown(channel_.number(), SHUT_RDWR);
        if (id_ > 0)
            ::waitpid(id_, nullptr, 0);
    }

    int channel() const { return channel_.number(); }
    bool busy() const { return work_.has_value(); }
    void stop() const { ::kill(id_, SIGTERM); }

    void begin(std::size_t work) {
        work_ = work;
        ::send(channel_.number(), &work, sizeof work, MSG_NOSIGNAL); // a dead process shows when it is listened to
    }

    /// The result of the work in hand; a process that has died in it is told in the errors.
    WorkResult result() {
        Answer answer{*work_, kFailed};
        const bool alive = ::recv(channel_.number(), &answer, sizeof answer, 0) == ssize_t(sizeof answer);
        WorkResult result{*work_, answer.exitCode, output_.next(), errors_.next()};
        work_.reset();
        if (!alive) {
            int status = 0;
            ::waitpid(std::exchange(id_, 0), &status, 0);
            result.errors += WIFSIGNALED(status) ? crashText(WTERMSIG(status))
                                                 : "Fehler: Der Druck hat sich vorzeitig beendet.\n";
        }
        return result;
    }
    bool alive() const { return id_ > 0; }

  private:
    Worker(std::array<Descriptor, 2> ends, const std::function<int(std::size_t)>& work)
        : channel_(std::move(ends[0])) {
        const auto answer = [&] {
            channel_.close();
            ::dup2(output_.number(), STDOUT_FILENO);
            ::dup2(errors_.number(), STDERR_FILENO);
            return serve(ends[1].number(), work);
        };
        // It ends before the parent's own grace does, which tells what has become of the work.
        id_ = beginProcess(answer, 1);
    }

    Capture output_{"output"};
    Capture errors_{"errors"};
    Descriptor channel_;
    pid_t id_ = 0;
    std::optional<std::size_t> work_;
};

} // namespace

void shareWork(std::size_t count, std::size_t processes, const std::function<int(std::size_t)>& work,
               const std::function<void(const WorkResult&)>& done) {
    std::list<Worker> workers;
    std::size_t next = 0;
    bool stopped = false;
    for (;;) {
        while (!cancelled() && next < count) {
            auto idle = std::ranges::find(workers, false, &Worker::busy);
            if (idle == workers.end() && workers.size() >= processes)
                break;
            auto& worker = idle == workers.end() ? workers.emplace_back(work) : *idle;
            worker.begin(next++);
        }
        std::vector<pollfd> waiting;
        for (const auto& worker : workers)
            if (worker.busy())
                waiting.push_back({worker.channel(), POLLIN, 0});
        if (waiting.empty())
            return;
        if (cancelled() && !stopped) {
            stopped = true;
            std::ranges::for_each(workers, &Worker::stop);
        }
        if (::poll(waiting.data(), waiting.size(), -1) < 0)
            continue; // a signal
        for (auto worker = workers.begin(); worker != workers.end();) {
            const auto heard = std::ranges::find(waiting, worker->channel(), &pollfd::fd);
            if (heard != waiting.end() && heard->revents != 0)
                done(worker->result());
            worker = worker->alive() ? std::next(worker) : workers.erase(worker);
        }
    }
}

} // namespace kvtdruck::cli
