#include "platform/posix/bounded_work.h"

#include "platform/as_anybody.h"
#include "platform/posix/memory_watch.h"
#include "platform/signals.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace kvtdruck {
namespace {

constexpr WorkLimits kLimits{1, 20, std::uint64_t{1} << 30};

TEST(BoundedWork, GivesWhatTheWorkReturns) {
    EXPECT_EQ(runBounded(kLimits, [] { return std::string(1'000'000, 'x'); }), std::string(1'000'000, 'x'));
    EXPECT_EQ(runBounded(kLimits, [] { return std::string(); }), "");
}

TEST(BoundedWork, SaysWhyTheWorkHasFailed) {
    try {
        runBounded(kLimits, []() -> std::string { throw std::runtime_error("so nicht"); });
        FAIL();
    } catch (const WorkFailed& failure) {
        EXPECT_STREQ(failure.what(), "so nicht");
    }
}

TEST(BoundedWork, EndsWhatComputesForEver) {
    EXPECT_EQ(runBounded(kLimits,
                         []() -> std::string {
                             for (std::atomic<unsigned> n = 0;; ++n) {
                             }
                         }),
              std::nullopt);
}

TEST(BoundedWork, EndsWhatWaitsForEver) {
    EXPECT_EQ(runBounded({1, 1, kLimits.memory},
                         []() -> std::string {
                             for (;;)
                                 ::pause();
                         }),
              std::nullopt);
}

TEST(BoundedWork, ACrashIsNoResult) {
    EXPECT_EQ(runBounded(kLimits,
                         []() -> std::string {
                             ::raise(SIGKILL);
                             return "";
                         }),
              std::nullopt);
}

#ifndef KVT_SANITIZED
TEST(BoundedWork, MemoryHasAnEnd) {
    EXPECT_THROW(runBounded(kLimits, [] { return std::string(std::size_t{1} << 31, 'x'); }), WorkFailed);
}

/// Libraries that go on with what they have then give something else than they should.
TEST(BoundedWork, MemoryThatWasRefusedIsNoResultThoughNobodyMinded) {
    constexpr std::size_t kMuch = std::size_t{1} << 31;
    void* (*const asked[])() = {[] { return std::malloc(kMuch); }, [] { return std::calloc(kMuch / 16, 16); },
                                [] { return std::realloc(nullptr, kMuch); },
                                [] { return std::aligned_alloc(64, kMuch); },
                                []() -> void* {
                                    void* memory = nullptr;
                                    return ::posix_memalign(&memory, 64, kMuch) == 0 ? memory : nullptr;
                                }};
    for (const auto ask : asked)
        EXPECT_THROW(runBounded(kLimits, [&] { return std::string(ask() == nullptr ? "weiter" : "genug"); }),
                     WorkFailed);
    const volatile std::size_t nothing = 0;
    void* const freed = std::realloc(std::malloc(1), nothing);
    EXPECT_FALSE(memoryWasRefused()) << "not to this process, and nothing was asked for";
    std::free(freed);
}

TEST(BoundedWork, GivingUpForWantOfMemorySaysSo) {
    EXPECT_EXIT(giveUpForWantOfMemory(), testing::KilledBySignal(SIGABRT),
                "Fehler: Der Arbeitsspeicher reicht nicht aus");
}
#endif

/// Lowers a limit of this process until it goes.
class Lowered {
  public:
    Lowered(__rlimit_resource resource, rlim_t most) : resource_(resource) {
        EXPECT_EQ(::getrlimit(resource, &before_), 0);
        const rlimit lowered{most, before_.rlim_max};
        EXPECT_EQ(::setrlimit(resource, &lowered), 0);
    }
    Lowered(const Lowered&) = delete;
    Lowered& operator=(const Lowered&) = delete;
    ~Lowered() { EXPECT_EQ(::setrlimit(resource_, &before_), 0); }

  private:
    __rlimit_resource resource_;
    rlimit before_{};
};

TEST(BoundedWork, WhereNoProcessCanBeHadTheSystemSaysWhy) {
    const auto code = [] {
        try {
            runBounded(kLimits, [] { return std::string(); });
        } catch (const std::system_error& error) {
            return error.code().value();
        }
        return 0;
    };
    {
        const Lowered files(RLIMIT_NOFILE, 0);
        EXPECT_EQ(code(), EMFILE);
    }
    const AsAnybody user;
    const Lowered processes(RLIMIT_NPROC, 0);
    EXPECT_EQ(code(), EAGAIN);
}

TEST(BoundedWork, SignalsDoNotEndTheWait) {
    const Signals signals;
    EXPECT_EQ(runBounded(kLimits,
                         [] {
                             ::usleep(30'000);
                             return std::string("fertig");
                         }),
              "fertig");
}

/// Writes into every pipe that is open, as the process itself does when it is done, and closes it.
void writeIntoPipes() {
    for (int descriptor = STDERR_FILENO + 1; descriptor < 64; ++descriptor) {
        struct stat status {};
        if (::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode)) {
            EXPECT_EQ(::write(descriptor, "+halb", 5), 5);
            ::close(descriptor);
        }
    }
}

TEST(BoundedWork, WhatCameOfAProcessThatFailedIsNoResult) {
    const auto failing = [] {
        writeIntoPipes();
        return std::string("ganz");
    };
    const auto killed = []() -> std::string {
        writeIntoPipes();
        ::raise(SIGKILL);
        return "";
    };
    EXPECT_EQ(runBounded(kLimits, failing), std::nullopt);
    EXPECT_EQ(runBounded(kLimits, killed), std::nullopt);
}

/// A process that may have no open files can't wait for one either (poll(2), EINVAL).
TEST(BoundedWork, WhereWaitingIsRefusedThereIsNoResult) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const auto refusing = [&] {
        const rlimit none{0, before.rlim_max};
        EXPECT_EQ(::prlimit(::getppid(), RLIMIT_NOFILE, &none, nullptr), 0);
        return std::string("fertig");
    };
    const auto result = runBounded(kLimits, refusing);
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(result, std::nullopt);
}

TEST(BoundedWork, WhatTheWorkChangesStaysThere) {
    int changed = 0;
    runBounded(kLimits, [&] {
        changed = 1;
        return std::string();
    });
    EXPECT_EQ(changed, 0);
}

} // namespace
} // namespace kvtdruck
