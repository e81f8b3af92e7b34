// The scope lock.
#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "portable/PosixMutex.h"
#include "portable/PosixSingleLock.h"
#include "tests/portable/VirtualTable.h"
#include "tests/portable/WaitSupport.h"

static_assert(sizeof(CPosixSingleLock) == 24, "table pointer, object, count");

namespace {

constexpr size_t kObjectOffset = 8;
constexpr size_t kCountOffset = 16;

// Answers as it is told and notes every call.
class CScriptedObject : public CPosixSyncObject {
public:
    int Lock(unsigned int timeoutMs) override {
        m_timeouts.push_back(timeoutMs);
        return m_nResult;
    }
    int Unlock() override {
        ++m_nUnlocks;
        return m_nResult;
    }

    std::vector<unsigned int> m_timeouts;
    int m_nUnlocks = 0;
    int m_nResult = 1;
};

int CountOf(const CPosixSingleLock& lock) { return FieldAt<int>(&lock, kCountOffset); }

}  // namespace

TEST(PosixSingleLock, LockNowWaitsWithoutLimitAndReleasesOnceAtTheEnd) {
    for (const int lockNow : {1, 2, -1}) {
        CScriptedObject object;
        {
            const CPosixSingleLock lock(&object, lockNow);
            EXPECT_EQ(std::vector<unsigned int>{0xFFFFFFFFu}, object.m_timeouts);
            EXPECT_EQ(static_cast<CPosixSyncObject*>(&object), FieldAt<CPosixSyncObject*>(&lock, kObjectOffset));
            EXPECT_EQ(1, CountOf(lock));
            EXPECT_EQ(0, object.m_nUnlocks);
        }
        EXPECT_EQ(1, object.m_nUnlocks);
    }
}

TEST(PosixSingleLock, WithoutLockNowNothingIsLockedOrReleased) {
    CScriptedObject object;
    { const CPosixSingleLock lock(&object, 0); }
    EXPECT_TRUE(object.m_timeouts.empty());
    EXPECT_EQ(0, object.m_nUnlocks);
}

TEST(PosixSingleLock, PassesTimeoutsAndResultsThrough) {
    CScriptedObject object;
    CPosixSingleLock lock(&object, 0);
    object.m_nResult = 7;
    EXPECT_EQ(7, lock.Lock(0));
    EXPECT_EQ(7, lock.Lock(123));
    EXPECT_EQ((std::vector<unsigned int>{0, 123}), object.m_timeouts);
    EXPECT_EQ(7, lock.Unlock());
    EXPECT_EQ(1, CountOf(lock));
}

TEST(PosixSingleLock, ReleasesExactlyItsOwnLocks) {
    CScriptedObject object;
    {
        CPosixSingleLock lock(&object, 1);
        lock.Lock(0);
        lock.Lock(0);
        lock.Unlock();
        EXPECT_EQ(1, object.m_nUnlocks);
    }
    EXPECT_EQ(3, object.m_nUnlocks);
}

TEST(PosixSingleLock, FailedCallsLeaveTheCount) {
    CScriptedObject object;
    CPosixSingleLock lock(&object, 1);
    object.m_nResult = 0;
    EXPECT_EQ(0, lock.Lock(5));
    EXPECT_EQ(1, CountOf(lock));
    EXPECT_EQ(0, lock.Unlock());
    EXPECT_EQ(1, CountOf(lock));
}

TEST(PosixSingleLock, TooManyUnlocksReleaseNothingAtTheEnd) {
    CScriptedObject object;
    {
        CPosixSingleLock lock(&object, 0);
        lock.Unlock();
        lock.Unlock();
        EXPECT_EQ(-2, CountOf(lock));
    }
    EXPECT_EQ(2, object.m_nUnlocks);
}

TEST(PosixSingleLock, ItsEndLeavesTheCountAsItIs) {
    CScriptedObject object;
    alignas(CPosixSingleLock) unsigned char storage[sizeof(CPosixSingleLock)];
    auto* const lock = new (storage) CPosixSingleLock(&object, 1);
    lock->Lock(0);
    lock->~CPosixSingleLock();
    EXPECT_EQ(2, object.m_nUnlocks);
    EXPECT_EQ(2, FieldAt<int>(storage, kCountOffset));
}

TEST(PosixSingleLock, GuardsAScopeWithAMutex) {
    CPosixMutex mutex(0);
    const auto tryMutex = [&mutex] {
        return OnAnotherThread([&mutex] { return mutex.Lock(0) == 1 ? mutex.Unlock() : 0; });
    };
    {
        const CPosixSingleLock lock(&mutex, 1);
        EXPECT_EQ(0, tryMutex());
    }
    EXPECT_EQ(1, tryMutex());
}

TEST(PosixSingleLock, ItsTableHoldsDestructorLockAndUnlock) {
    CScriptedObject object;
    auto* const lock = new CPosixSingleLock(&object, 0);
    EXPECT_EQ(1, SlotOf<int(CPosixSingleLock*, unsigned int)>(lock, 2)(lock, 77));
    EXPECT_EQ(std::vector<unsigned int>{77}, object.m_timeouts);
    EXPECT_EQ(1, SlotOf<int(CPosixSingleLock*)>(lock, 3)(lock));
    EXPECT_EQ(1, object.m_nUnlocks);
    SlotOf<void(CPosixSingleLock*)>(lock, 1)(lock);
}
