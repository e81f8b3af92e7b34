// The millisecond tick counter.
#include <gtest/gtest.h>
#include <unistd.h>

#include "portable/PortableTime.h"

namespace {

class SyncTime : public testing::Test {
protected:
    SyncTime() : m_previous(starttime) {}
    ~SyncTime() override { starttime = m_previous; }

    // A start that lies so far back.
    static void StartBefore(long seconds, long microseconds) {
        gettimeofday(&starttime, nullptr);
        starttime.tv_sec -= seconds;
        starttime.tv_usec -= microseconds;
        if (starttime.tv_usec >= 0) return;
        starttime.tv_usec += 1000000;
        --starttime.tv_sec;
    }

    timeval m_previous;
};

}  // namespace

TEST_F(SyncTime, TheFirstCallReturnsZeroAndKeepsTheStart) {
    ASSERT_EQ(starttime.tv_sec, 0);
    ASSERT_EQ(starttime.tv_usec, 0);
    timeval before = {};
    gettimeofday(&before, nullptr);
    EXPECT_EQ(CPortableTime::GetSyncTime(), 0u);
    EXPECT_GE(starttime.tv_sec, before.tv_sec);
    EXPECT_LE(starttime.tv_sec, before.tv_sec + 5);
    const timeval kept = starttime;
    CPortableTime::GetSyncTime();
    EXPECT_EQ(starttime.tv_sec, kept.tv_sec);
    EXPECT_EQ(starttime.tv_usec, kept.tv_usec);
}

TEST_F(SyncTime, AStartWithoutSecondsCountsAsNone) {
    starttime = {0, 500};
    EXPECT_EQ(CPortableTime::GetSyncTime(), 0u);
    EXPECT_NE(starttime.tv_sec, 0);
}

TEST_F(SyncTime, ItCountsMilliseconds) {
    CPortableTime::GetSyncTime();
    usleep(50000);
    const unsigned int ticks = CPortableTime::GetSyncTime();
    EXPECT_GE(ticks, 49u);
    EXPECT_LT(ticks, 5000u);
}

TEST_F(SyncTime, ASecondIsBorrowedForLargerMicroseconds) {
    for (const long microseconds : {0L, 1000L, 250000L, 500000L, 999000L}) {
        StartBefore(1, microseconds);
        const unsigned int ticks = CPortableTime::GetSyncTime();
        EXPECT_GE(ticks, 1000u + static_cast<unsigned int>(microseconds / 1000)) << microseconds;
        EXPECT_LT(ticks, 1900u + static_cast<unsigned int>(microseconds / 1000)) << microseconds;
    }
}

TEST_F(SyncTime, AStartInTheFutureCountsUpToZero) {
    StartBefore(-10, 0);
    const unsigned int ticks = CPortableTime::GetSyncTime();
    EXPECT_GE(ticks, 0u - 10000u);
    EXPECT_LT(ticks, 0u - 5000u);
}

TEST_F(SyncTime, ItWrapsAt32Bits) {
    StartBefore(4294967, 300000);  // 2^32 ms are 4294967.296 s
    const unsigned int ticks = CPortableTime::GetSyncTime();
    EXPECT_GE(ticks, 4u);
    EXPECT_LT(ticks, 5000u);
}
