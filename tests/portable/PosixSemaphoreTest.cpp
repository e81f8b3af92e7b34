// The counting semaphore.
#include <gtest/gtest.h>

#include "portable/PosixSemaphore.h"
#include "tests/portable/VirtualTable.h"
#include "tests/portable/WaitSupport.h"

static_assert(sizeof(CPosixSemaphore) == 24, "table pointer, record, count, maximum");

namespace {

constexpr size_t kCountOffset = 16;
constexpr size_t kMaximumOffset = 20;

int CountOf(const CPosixSemaphore& semaphore) { return FieldAt<int>(&semaphore, kCountOffset); }

}  // namespace

TEST(PosixSemaphore, StoresBothCountsUnchecked) {
    struct SCase {
        int m_nInitial;
        int m_nMaximum;
    };
    for (const SCase& c : {SCase{0, 3}, SCase{5, 2}, SCase{-2, -7}}) {
        const CPosixSemaphore semaphore(c.m_nInitial, c.m_nMaximum);
        EXPECT_EQ(c.m_nInitial, FieldAt<int>(&semaphore, kCountOffset));
        EXPECT_EQ(c.m_nMaximum, FieldAt<int>(&semaphore, kMaximumOffset));
    }
}

TEST(PosixSemaphore, RisesToItsMaximumAndNoFurther) {
    CPosixSemaphore semaphore(0, 3);
    EXPECT_EQ(0, semaphore.Lock(0));
    for (int count = 1; count <= 3; ++count) {
        EXPECT_EQ(1, semaphore.Unlock());
        EXPECT_EQ(count, CountOf(semaphore));
    }
    EXPECT_EQ(1, semaphore.Unlock());
    EXPECT_EQ(3, CountOf(semaphore));
    for (int count = 2; count >= 0; --count) {
        EXPECT_EQ(1, semaphore.Lock(0));
        EXPECT_EQ(count, CountOf(semaphore));
    }
    EXPECT_EQ(0, semaphore.Lock(0));
    EXPECT_EQ(0, CountOf(semaphore));
}

TEST(PosixSemaphore, AnInitialCountAboveTheMaximumCanBeTakenInFull) {
    CPosixSemaphore semaphore(5, 2);
    EXPECT_EQ(1, semaphore.Unlock());
    EXPECT_EQ(5, CountOf(semaphore));
    for (int i = 0; i < 5; ++i) EXPECT_EQ(1, semaphore.Lock(0)) << i;
    EXPECT_EQ(0, semaphore.Lock(0));
}

TEST(PosixSemaphore, ANegativeCountMustRiseAboveZero) {
    CPosixSemaphore semaphore(-1, 1);
    EXPECT_EQ(0, semaphore.Lock(0));
    EXPECT_EQ(1, semaphore.Unlock());
    EXPECT_EQ(0, semaphore.Lock(0));
    EXPECT_EQ(1, semaphore.Unlock());
    EXPECT_EQ(1, semaphore.Lock(0));
}

TEST(PosixSemaphore, EveryWaitTakesOneUnitThatIsThere) {
    CPosixSemaphore semaphore(3, 3);
    EXPECT_EQ(1, semaphore.Lock(0));
    EXPECT_EQ(1, semaphore.Lock(50));
    EXPECT_EQ(1, semaphore.Lock(kInfiniteTimeout));
    EXPECT_EQ(0, CountOf(semaphore));
}

TEST(PosixSemaphore, ATimedWaitFailsAfterItsTimeout) {
    CPosixSemaphore semaphore(0, 1);
    const auto [result, elapsedMs] = Measured([&semaphore] { return semaphore.Lock(50); });
    EXPECT_EQ(0, result);
    EXPECT_GE(elapsedMs, 45);
    EXPECT_LT(elapsedMs, 10000);
    EXPECT_EQ(0, CountOf(semaphore));
}

TEST(PosixSemaphore, WaitersGoOnWithAnUnlockOfAnyThread) {
    for (const unsigned int timeoutMs : {kPatientMs, kInfiniteTimeout}) {
        CPosixSemaphore semaphore(0, 1);
        auto waiter = std::async(std::launch::async, [&] { return semaphore.Lock(timeoutMs); });
        EXPECT_TRUE(StillWaiting(waiter));
        EXPECT_EQ(1, semaphore.Unlock());
        EXPECT_EQ(1, waiter.get());
        EXPECT_EQ(0, CountOf(semaphore));
    }
}

TEST(PosixSemaphore, ItsTableHoldsDestructorLockAndUnlock) {
    auto* const semaphore = new CPosixSemaphore(1, 1);
    EXPECT_EQ(1, SlotOf<int(CPosixSemaphore*, unsigned int)>(semaphore, 2)(semaphore, 0));
    EXPECT_EQ(0, CountOf(*semaphore));
    EXPECT_EQ(1, SlotOf<int(CPosixSemaphore*)>(semaphore, 3)(semaphore));
    EXPECT_EQ(1, CountOf(*semaphore));
    SlotOf<void(CPosixSemaphore*)>(semaphore, 1)(semaphore);
}
