// What is left of streams after a fault: nothing.
#pragma once

#include <gtest/gtest.h>

#include <thread>

#include "stream/LiveAggregators.h"
#include "tests/support/CreationLockState.h"

// No aggregator lives, and the locks are free for other threads.
inline void ExpectNoStreamLeft() {
    EXPECT_TRUE(IsCreationLockFree());
    std::thread([] {
        ASSERT_EQ(pthread_mutex_trylock(&g_AggregatorsMutex), 0);
        EXPECT_EQ(g_lAggregators, 0);
        pthread_mutex_unlock(&g_AggregatorsMutex);
    }).join();
}
