// Signals in the middle of system calls.
#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <sys/time.h>

namespace kvtdruck {

/// Until it goes, signals that do nothing come every two milliseconds.
class Signals {
  public:
    Signals() {
        struct sigaction ignoring {};
        ignoring.sa_handler = [](int) {};
        EXPECT_EQ(::sigaction(SIGALRM, &ignoring, &before_), 0);
        const itimerval often{{0, 2000}, {0, 2000}};
        EXPECT_EQ(::setitimer(ITIMER_REAL, &often, nullptr), 0);
    }
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;
    ~Signals() {
        const itimerval never{};
        EXPECT_EQ(::setitimer(ITIMER_REAL, &never, nullptr), 0);
        EXPECT_EQ(::sigaction(SIGALRM, &before_, nullptr), 0);
    }

    /// Leaves them to the other threads.
    static void spareThisThread() {
        sigset_t alarm;
        sigemptyset(&alarm);
        sigaddset(&alarm, SIGALRM);
        EXPECT_EQ(::pthread_sigmask(SIG_BLOCK, &alarm, nullptr), 0);
    }

  private:
    struct sigaction before_ {};
};

} // namespace kvtdruck
