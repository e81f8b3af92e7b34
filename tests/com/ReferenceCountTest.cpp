// The count behind AddRef and Release.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "com/ReferenceCount.h"

namespace {

static_assert(sizeof(sem_t) == 32, "the size of sem_t is part of every object's layout");
static_assert(sizeof(CReferenceCount) == sizeof(sem_t), "a count is its semaphore and nothing else");
static_assert(alignof(CReferenceCount) == alignof(sem_t), "a count is its semaphore and nothing else");

constexpr auto kLongEnoughToBlock = std::chrono::milliseconds(50);

// A thread that gives one reference back and tells when it is through.
class CReleasingThread {
public:
    explicit CReleasingThread(CReferenceCount& count)
        : m_thread([this, &count] {
              m_bStarted = true;
              m_nLeft = count.Decrement();
              m_bThrough = true;
          }) {
        while (!m_bStarted) std::this_thread::yield();
        std::this_thread::sleep_for(kLongEnoughToBlock);
    }

    bool IsThrough() const { return m_bThrough; }
    void Interrupt() { pthread_kill(m_thread.native_handle(), SIGUSR1); }

    unsigned int Finish() {
        m_thread.join();
        return m_nLeft;
    }

private:
    std::atomic<bool> m_bStarted{false};
    std::atomic<bool> m_bThrough{false};
    std::atomic<unsigned int> m_nLeft{~0U};
    std::thread m_thread;
};

std::atomic<int> g_signals{0};

TEST(ReferenceCount, StartsAtTheGivenValue) {
    EXPECT_EQ(CReferenceCount(0).Value(), 0U);
    EXPECT_EQ(CReferenceCount(1).Value(), 1U);
}

TEST(ReferenceCount, IncrementReturnsTheNewCount) {
    CReferenceCount count(0);
    EXPECT_EQ(count.Increment(), 1U);
    EXPECT_EQ(count.Increment(), 2U);
}

TEST(ReferenceCount, DecrementReturnsTheRemainingCount) {
    CReferenceCount count(2);
    EXPECT_EQ(count.Decrement(), 1U);
    EXPECT_EQ(count.Decrement(), 0U);
}

TEST(ReferenceCount, IsASemaphoreOfItsProcess) {
    CReferenceCount count(3);
    int value = 0;
    ASSERT_EQ(sem_getvalue(reinterpret_cast<sem_t*>(&count), &value), 0);
    EXPECT_EQ(value, 3);
    ASSERT_EQ(sem_post(reinterpret_cast<sem_t*>(&count)), 0);
    EXPECT_EQ(count.Value(), 4U);
}

TEST(ReferenceCount, ADecrementAtZeroBlocksInsteadOfUnderflowing) {
    CReferenceCount count(0);
    CReleasingThread releasing(count);
    EXPECT_FALSE(releasing.IsThrough());
    EXPECT_EQ(count.Value(), 0U);
    count.Increment();
    EXPECT_EQ(releasing.Finish(), 0U);
    EXPECT_EQ(count.Value(), 0U);
}

TEST(ReferenceCount, ASignalDoesNotEndABlockedDecrement) {
    struct sigaction action {};
    action.sa_handler = [](int) { ++g_signals; };
    ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);

    CReferenceCount count(0);
    CReleasingThread releasing(count);
    releasing.Interrupt();
    while (g_signals == 0) std::this_thread::yield();
    std::this_thread::sleep_for(kLongEnoughToBlock);
    EXPECT_FALSE(releasing.IsThrough());
    count.Increment();
    EXPECT_EQ(releasing.Finish(), 0U);
}

TEST(ReferenceCount, BalancedUseFromManyThreadsEndsWhereItBegan) {
    CReferenceCount count(1);
    std::atomic<unsigned int> zeros{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < 5000; ++turn) {
                if (count.Increment() == 0) ++zeros;
                if (count.Decrement() == 0) ++zeros;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count.Value(), 1U);
    EXPECT_EQ(zeros, 0U);
}

}  // namespace
