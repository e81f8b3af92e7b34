// Output that waits to be handed out.
#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <random>

#include "sdk/ByteQueue.h"

namespace {

TEST(SdkByteQueue, HandsBytesOutInTheOrderOfTheirArrival) {
    CByteQueue queue;
    std::deque<unsigned char> expected;
    std::mt19937 random(3);
    unsigned char next = 0;
    for (int round = 0; round < 2000; ++round) {
        const std::size_t count = random() % 300;
        unsigned char* const place = queue.Reserve(count);
        for (std::size_t i = 0; i < count; ++i) expected.push_back(place[i] = next++);
        queue.Commit(count);
        ASSERT_EQ(queue.Size(), expected.size());
        const std::size_t taken = random() % (queue.Size() + 1);
        const unsigned char* const bytes = queue.Take(taken);
        for (std::size_t i = 0; i < taken; ++i, expected.pop_front()) ASSERT_EQ(bytes[i], expected.front());
    }
}

TEST(SdkByteQueue, ReservedBytesCountOnlyOnceCommitted) {
    CByteQueue queue;
    queue.Reserve(100);
    EXPECT_EQ(queue.Size(), 0U);
    queue.Commit(60);
    EXPECT_EQ(queue.Size(), 60U);
}

TEST(SdkByteQueue, ClearDropsWhatWaits) {
    CByteQueue queue;
    std::memset(queue.Reserve(10), 1, 10);
    queue.Commit(10);
    queue.Clear();
    EXPECT_EQ(queue.Size(), 0U);
}

}  // namespace
