// Auto-reset and manual-reset events.
#include <gtest/gtest.h>

#include <vector>

#include "portable/PosixEvent.h"
#include "portable/PosixSingleLock.h"
#include "tests/portable/VirtualTable.h"
#include "tests/portable/WaitSupport.h"

static_assert(sizeof(CPosixEvent) == 32, "a semaphore and the manual-reset flag");

namespace {

constexpr size_t kCountOffset = 16;
constexpr size_t kMaximumOffset = 20;
constexpr size_t kManualResetOffset = 24;

// Counts the calls that reach the virtual operations.
class CWatchedEvent : public CPosixEvent {
public:
    using CPosixEvent::CPosixEvent;
    int Lock(unsigned int timeoutMs) override {
        m_timeouts.push_back(timeoutMs);
        return CPosixEvent::Lock(timeoutMs);
    }
    int Unlock() override {
        ++m_nUnlocks;
        return CPosixEvent::Unlock();
    }

    std::vector<unsigned int> m_timeouts;
    int m_nUnlocks = 0;
};

}  // namespace

TEST(PosixEvent, ItsFieldsAreASemaphoreOfMaximumOneAndTheFlag) {
    struct SCase {
        int m_nInitial;
        int m_nManual;
        int m_nCount;
    };
    for (const SCase& c : {SCase{0, 0, 0}, SCase{1, 7, 1}, SCase{-3, -1, 1}}) {
        const CPosixEvent event(c.m_nInitial, c.m_nManual);
        EXPECT_EQ(c.m_nCount, FieldAt<int>(&event, kCountOffset));
        EXPECT_EQ(1, FieldAt<int>(&event, kMaximumOffset));
        EXPECT_EQ(c.m_nManual, FieldAt<int>(&event, kManualResetOffset));
    }
}

TEST(PosixEvent, AutoResetLetsOneWaitThroughPerSignal) {
    CPosixEvent event(0, 0);
    EXPECT_EQ(0, event.WaitForEvent(0));
    EXPECT_EQ(1, event.SetEvent());
    EXPECT_EQ(1, event.WaitForEvent(0));
    EXPECT_EQ(0, event.WaitForEvent(0));
}

TEST(PosixEvent, ManualResetStaysSignalled) {
    CPosixEvent event(1, 1);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(1, event.WaitForEvent(0)) << i;
    EXPECT_EQ(1, event.WaitForEvent(50));
    EXPECT_EQ(1, event.WaitForEvent(kInfiniteTimeout));
    EXPECT_EQ(1, event.ResetEvent());
    EXPECT_EQ(0, event.WaitForEvent(0));
    EXPECT_EQ(0, event.ResetEvent());
}

TEST(PosixEvent, AnyNonZeroInitialStateIsSignalled) {
    for (const int state : {1, 2, -1}) {
        CPosixEvent event(state, 0);
        EXPECT_EQ(1, event.WaitForEvent(0)) << state;
    }
}

TEST(PosixEvent, AnyNonZeroFlagIsManualReset) {
    for (const int flag : {1, 2, -1}) {
        CPosixEvent event(1, flag);
        EXPECT_EQ(1, event.WaitForEvent(0)) << flag;
        EXPECT_EQ(1, event.WaitForEvent(0)) << flag;
    }
}

TEST(PosixEvent, SignallingTwiceSignalsOnce) {
    CPosixEvent event(1, 0);
    EXPECT_EQ(1, event.SetEvent());
    EXPECT_EQ(1, event.SetEvent());
    EXPECT_EQ(1, event.WaitForEvent(0));
    EXPECT_EQ(0, event.WaitForEvent(0));
}

TEST(PosixEvent, ATimedWaitFailsAfterItsTimeout) {
    CPosixEvent event(0, 1);
    const auto [result, elapsedMs] = Measured([&event] { return event.WaitForEvent(50); });
    EXPECT_EQ(0, result);
    EXPECT_GE(elapsedMs, 45);
    EXPECT_EQ(0, event.WaitForEvent(0));
}

TEST(PosixEvent, AutoResetReleasesOneWaitingThreadPerSignal) {
    CPosixEvent event(0, 0);
    auto first = std::async(std::launch::async, [&event] { return event.WaitForEvent(kInfiniteTimeout); });
    auto second = std::async(std::launch::async, [&event] { return event.WaitForEvent(kInfiniteTimeout); });
    event.SetEvent();
    while (first.wait_for(std::chrono::milliseconds(1)) == std::future_status::timeout &&
           second.wait_for(std::chrono::milliseconds(1)) == std::future_status::timeout) {
    }
    EXPECT_TRUE(StillWaiting(first) || StillWaiting(second));
    event.SetEvent();
    EXPECT_EQ(1, first.get());
    EXPECT_EQ(1, second.get());
}

TEST(PosixEvent, ManualResetReleasesAllWaitingThreads) {
    CPosixEvent event(0, 1);
    std::vector<std::future<int>> waiters;
    for (int i = 0; i < 5; ++i) {
        waiters.push_back(std::async(std::launch::async, [&event, i] {
            return event.WaitForEvent(i % 2 == 0 ? kInfiniteTimeout : kPatientMs);
        }));
    }
    EXPECT_TRUE(StillWaiting(waiters.back()));
    event.SetEvent();
    for (std::future<int>& waiter : waiters) EXPECT_EQ(1, waiter.get());
    EXPECT_EQ(1, event.WaitForEvent(0));
}

TEST(PosixEvent, LockConsumesTheSignalOfAManualResetEvent) {
    CPosixEvent event(1, 1);
    {
        CPosixSingleLock lock(&event, 1);
        EXPECT_EQ(0, event.WaitForEvent(0));
    }
    EXPECT_EQ(1, event.WaitForEvent(0));
    EXPECT_EQ(1, event.Lock(0));
    EXPECT_EQ(0, event.Lock(0));
    EXPECT_EQ(1, event.Unlock());
    EXPECT_EQ(1, event.WaitForEvent(0));
}

TEST(PosixEvent, ItsOperationsCallTheVirtualLockAndUnlock) {
    CWatchedEvent event(0, 1);
    event.SetEvent();
    EXPECT_EQ(1, event.m_nUnlocks);
    EXPECT_EQ(1, event.WaitForEvent(1234));
    EXPECT_EQ(2, event.m_nUnlocks);
    event.ResetEvent();
    EXPECT_EQ((std::vector<unsigned int>{1234, 0}), event.m_timeouts);
    EXPECT_EQ(0, event.WaitForEvent(0));
    EXPECT_EQ(2, event.m_nUnlocks);
}

TEST(PosixEvent, ItsTableHoldsItsDestructorAndTheSemaphoresOperations) {
    const CPosixSemaphore semaphore(0, 1);
    auto* const event = new CPosixEvent(1, 1);
    EXPECT_NE(SlotOf<void(CPosixEvent*)>(&semaphore, 1), SlotOf<void(CPosixEvent*)>(event, 1));
    for (const size_t slot : {size_t{2}, size_t{3}}) {
        EXPECT_EQ(SlotOf<void()>(&semaphore, slot), SlotOf<void()>(event, slot)) << slot;
    }
    EXPECT_EQ(1, SlotOf<int(CPosixEvent*, unsigned int)>(event, 2)(event, 0));
    EXPECT_EQ(1, SlotOf<int(CPosixEvent*)>(event, 3)(event));
    SlotOf<void(CPosixEvent*)>(event, 1)(event);
}
