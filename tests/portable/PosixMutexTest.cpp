// The recursive mutex.
#include <gtest/gtest.h>
#include <limits.h>

#include "portable/PosixMutex.h"
#include "tests/portable/VirtualTable.h"
#include "tests/portable/WaitSupport.h"

static_assert(sizeof(CPosixSyncObject) == 16, "table pointer and record");
static_assert(sizeof(CPosixMutex) == 16, "no field of its own");
static_assert(sizeof(unsigned int) == 4 && kInfiniteTimeout == 4294967295u, "the infinite timeout");

// The thread sanitizer would report unlocking by another thread, which answers 0 here.
extern "C" KELO_EXPORT const char* __tsan_default_options() { return "report_mutex_bugs=0"; }

namespace {

int TryFromAnotherThread(CPosixMutex& mutex) {
    return OnAnotherThread([&mutex] {
        const int locked = mutex.Lock(0);
        if (locked == 1) mutex.Unlock();
        return locked;
    });
}

}  // namespace

TEST(PosixMutex, AnInitialOwnerOfExactlyOneOwnsIt) {
    CPosixMutex mutex(1);
    EXPECT_EQ(0, TryFromAnotherThread(mutex));
    EXPECT_EQ(1, mutex.Unlock());
    EXPECT_EQ(1, TryFromAnotherThread(mutex));
}

TEST(PosixMutex, AnyOtherInitialOwnerLeavesItFree) {
    for (const int owner : {0, 2, -1, INT_MIN}) {
        CPosixMutex mutex(owner);
        EXPECT_EQ(1, TryFromAnotherThread(mutex)) << owner;
        EXPECT_EQ(0, mutex.Unlock()) << owner;
    }
}

TEST(PosixMutex, TheOwnerLocksAgainAndUnlocksAsOften) {
    CPosixMutex mutex(1);
    EXPECT_EQ(1, mutex.Lock(0));
    EXPECT_EQ(1, mutex.Lock(10));
    EXPECT_EQ(1, mutex.Lock(kInfiniteTimeout));
    for (int held = 4; held > 0; --held) {
        EXPECT_EQ(0, TryFromAnotherThread(mutex)) << held;
        EXPECT_EQ(1, mutex.Unlock()) << held;
    }
    EXPECT_EQ(1, TryFromAnotherThread(mutex));
    EXPECT_EQ(0, mutex.Unlock());
}

TEST(PosixMutex, OnlyTheOwnerUnlocks) {
    CPosixMutex mutex(1);
    auto waiter = std::async(std::launch::async, [&mutex] { return mutex.Lock(300); });
    EXPECT_EQ(0, OnAnotherThread([&mutex] { return mutex.Unlock(); }));
    EXPECT_TRUE(StillWaiting(waiter));
    EXPECT_EQ(0, waiter.get());
    EXPECT_EQ(1, mutex.Unlock());
}

TEST(PosixMutex, PollingAHeldMutexFailsAtOnce) {
    CPosixMutex mutex(1);
    const auto [result, elapsedMs] = OnAnotherThread([&mutex] { return Measured([&mutex] { return mutex.Lock(0); }); });
    EXPECT_EQ(0, result);
    EXPECT_LT(elapsedMs, 5000);
    EXPECT_EQ(1, mutex.Unlock());
}

TEST(PosixMutex, ATimedWaitFailsAfterItsTimeout) {
    CPosixMutex mutex(1);
    const auto [result, elapsedMs] =
        OnAnotherThread([&mutex] { return Measured([&mutex] { return mutex.Lock(50); }); });
    EXPECT_EQ(0, result);
    EXPECT_GE(elapsedMs, 45);
    EXPECT_LT(elapsedMs, 10000);
    EXPECT_EQ(1, mutex.Unlock());
}

TEST(PosixMutex, ATimedWaitSucceedsAsSoonAsTheHolderUnlocks) {
    CPosixMutex mutex(1);
    auto waiter = std::async(std::launch::async, [&mutex] {
        return Measured([&mutex] { return mutex.Lock(kPatientMs) == 1 && mutex.Unlock() == 1 ? 1 : 0; });
    });
    EXPECT_TRUE(StillWaiting(waiter));
    EXPECT_EQ(1, mutex.Unlock());
    const auto [result, elapsedMs] = waiter.get();
    EXPECT_EQ(1, result);
    EXPECT_LT(elapsedMs, static_cast<long>(kPatientMs));
}

TEST(PosixMutex, AnInnerUnlockOfTheOwnerLetsNobodyIn) {
    CPosixMutex mutex(1);
    mutex.Lock(0);
    auto waiter =
        std::async(std::launch::async, [&mutex] { return mutex.Lock(kPatientMs) == 1 && mutex.Unlock() == 1; });
    EXPECT_TRUE(StillWaiting(waiter));
    EXPECT_EQ(1, mutex.Unlock());
    EXPECT_TRUE(StillWaiting(waiter));
    EXPECT_EQ(1, mutex.Unlock());
    EXPECT_TRUE(waiter.get());
}

TEST(PosixMutex, AnInfiniteWaitEndsWithTheUnlock) {
    CPosixMutex mutex(1);
    auto waiter =
        std::async(std::launch::async, [&mutex] { return mutex.Lock(kInfiniteTimeout) == 1 && mutex.Unlock() == 1; });
    EXPECT_TRUE(StillWaiting(waiter));
    EXPECT_EQ(1, mutex.Unlock());
    EXPECT_TRUE(waiter.get());
}

TEST(PosixMutex, ExcludesOtherThreads) {
    CPosixMutex mutex(0);
    long counter = 0;
    const auto count = [&mutex, &counter](unsigned int timeoutMs) {
        for (int i = 0; i < 5000; ++i) {
            if (mutex.Lock(timeoutMs) != 1) return 0;
            ++counter;
            mutex.Unlock();
        }
        return 1;
    };
    auto timed = std::async(std::launch::async, [&count] { return count(kPatientMs); });
    auto infinite = std::async(std::launch::async, [&count] { return count(kInfiniteTimeout); });
    EXPECT_EQ(1, timed.get());
    EXPECT_EQ(1, infinite.get());
    EXPECT_EQ(10000, counter);
}

TEST(PosixMutex, ItsTableHoldsDestructorLockAndUnlock) {
    auto* const mutex = new CPosixMutex(0);
    EXPECT_EQ(1, SlotOf<int(CPosixMutex*, unsigned int)>(mutex, 2)(mutex, 0));
    EXPECT_EQ(0, TryFromAnotherThread(*mutex));
    EXPECT_EQ(1, SlotOf<int(CPosixMutex*)>(mutex, 3)(mutex));
    EXPECT_EQ(1, TryFromAnotherThread(*mutex));
    SlotOf<void(CPosixMutex*)>(mutex, 1)(mutex);
}
