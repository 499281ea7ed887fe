// Work that is done in its order beside the thread that asks for it.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace kvtdruck::druckwerk {

/// Does tasks one after the other on a thread of its own. A bounded number of them waits; who gives more waits as
/// well, so memory stays flat. Tasks are used again and again, with the room that they have taken.
template <class Task>
class TaskQueue {
  public:
    /// `perform` is called on the queue's thread.
    explicit TaskQueue(std::function<void(Task&)> perform)
        : perform_(std::move(perform)), thread_([this] { work(); }) {}
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;
    /// What still waits is dropped.
    ~TaskQueue() {
        {
            const std::lock_guard lock(mutex_);
            waiting_ = 0;
            ending_ = true;
        }
        given_.notify_one();
        thread_.join();
    }

    /// Adds a task, made by `fill`; raises the exception of one that failed before.
    template <class Fill>
    void add(Fill&& fill) {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [this] { return waiting_ < kMost || failure_; });
        raiseFailure();
        Task& task = tasks_[(first_ + waiting_) % kMost];
        lock.unlock(); // nobody else looks at a task that does not wait yet
        fill(task);
        lock.lock();
        // The thread sleeps until a few tasks wait: waking it costs more than a small task.
        if (++waiting_ == kSome)
            given_.notify_one();
    }

    /// Waits until all is done; raises the exception of a task that failed.
    void finish() {
        std::unique_lock lock(mutex_);
        finishing_ = true;
        given_.notify_one();
        done_.wait(lock, [this] { return waiting_ == 0 || failure_; });
        finishing_ = false;
        raiseFailure();
    }

  private:
    static constexpr std::size_t kMost = 16;
    static constexpr std::size_t kSome = kMost / 2;

    void raiseFailure() const {
        if (failure_)
            std::rethrow_exception(failure_);
    }

    void work() {
        std::unique_lock lock(mutex_);
        while (!ending_) {
            given_.wait(lock, [this] { return ending_ || waiting_ >= kSome || (finishing_ && waiting_ > 0); });
            while (waiting_ > 0 && !failure_)
                performFirst(lock);
            if (failure_)
                return;
        }
    }

    void performFirst(std::unique_lock<std::mutex>& lock) {
        Task& task = tasks_[first_];
        lock.unlock();
        std::exception_ptr failure;
        try {
            perform_(task);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        failure_ = failure;
        first_ = (first_ + 1) % kMost;
        waiting_ -= waiting_ > 0 ? 1 : 0; // 0 where they were dropped meanwhile
        done_.notify_one();
    }

    std::function<void(Task&)> perform_;
    std::mutex mutex_;
    std::condition_variable given_; ///< to the thread
    std::condition_variable done_;  ///< by the thread
    std::array<Task, kMost> tasks_;
    std::size_t first_ = 0;
    std::size_t waiting_ = 0; ///< that in hand included
    bool finishing_ = false;
    bool ending_ = false;
    std::exception_ptr failure_;
    std::thread thread_; ///< the last member: it begins when all others are there
};

} // namespace kvtdruck::druckwerk
