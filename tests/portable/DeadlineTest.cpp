// The absolute deadline of a timed wait.
#include <gtest/gtest.h>

#include <climits>

#include "portable/Deadline.h"

namespace {

constexpr bool IsDeadline(timeval now, unsigned int timeoutMs, time_t seconds, long nanoseconds) {
    return DeadlineAfter(now, timeoutMs).tv_sec == seconds && DeadlineAfter(now, timeoutMs).tv_nsec == nanoseconds;
}

static_assert(IsDeadline({100, 500000}, 500, 100, 1000000000L), "exactly one second is not carried");

}  // namespace

TEST(Deadline, AddsTheTimeoutToTheWallClock) {
    struct SCase {
        timeval m_now;
        unsigned int m_nTimeoutMs;
        time_t m_nSeconds;
        long m_nNanoseconds;
    };
    const SCase cases[] = {
        {{100, 0}, 50, 100, 50000000L},
        {{100, 250}, 1, 100, 1250000L},
        {{100, 0}, 1000, 101, 0},
        {{100, 0}, 2345, 102, 345000000L},
        {{100, 999999}, 1, 101, 999000L},
        {{100, 999999}, 999, 101, 998999000L},
        {{0, 0}, UINT_MAX - 1, 4294967, 294000000L},
    };
    for (const SCase& c : cases) {
        EXPECT_TRUE(IsDeadline(c.m_now, c.m_nTimeoutMs, c.m_nSeconds, c.m_nNanoseconds)) << &c - cases;
    }
}

TEST(Deadline, CarriesOnlyNanosecondsAboveOneSecond) {
    EXPECT_TRUE(IsDeadline({100, 1000}, 999, 100, 1000000000L));
    EXPECT_TRUE(IsDeadline({100, 1001}, 999, 101, 1000L));
    EXPECT_TRUE(IsDeadline({100, 999}, 999, 100, 999999000L));
}

TEST(Deadline, BeginsAtThisMoment) {
    timeval before{};
    gettimeofday(&before, nullptr);
    const timespec deadline = DeadlineFromNow(3000);
    timeval after{};
    gettimeofday(&after, nullptr);
    EXPECT_GE(deadline.tv_sec, before.tv_sec + 3);
    EXPECT_LE(deadline.tv_sec, after.tv_sec + 3);
    EXPECT_LT(deadline.tv_nsec, 1000000000L);
}
