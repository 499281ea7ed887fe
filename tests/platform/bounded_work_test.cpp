#include "platform/posix/bounded_work.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
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
#endif

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
