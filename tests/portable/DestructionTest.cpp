// What is left of the locking objects and strings after their end, and after an allocation that fails.
// The sources under test are compiled into this program with optimisation, which drops ordinary stores to a dying
// object.
#include <gtest/gtest.h>

#include <new>

#include "portable/BasicString.h"
#include "portable/PosixEvent.h"
#include "portable/PosixMutex.h"
#include "portable/PosixSemaphore.h"
#include "tests/portable/VirtualTable.h"
#include "tests/support/Heap.h"

namespace {

constexpr size_t kPointerOffset = 8;

// An object that lives and dies in storage that outlasts it.
template <typename T>
class CMortal {
public:
    template <typename... TArguments>
    explicit CMortal(TArguments... arguments) : m_pObject(new (m_storage) T(arguments...)) {
        m_bHadPointer = Pointer() != nullptr;
        m_pObject->~T();
    }

    T* operator->() const { return m_pObject; }
    const void* Pointer() const { return FieldAt<const void*>(m_storage, kPointerOffset); }
    bool HadPointer() const { return m_bHadPointer; }

private:
    alignas(T) unsigned char m_storage[sizeof(T)];
    T* m_pObject;
    bool m_bHadPointer = false;
};

template <typename T, typename... TArguments>
bool ConstructionThrows(TArguments... arguments) {
    const CScarceMemory scarce(0);
    try {
        const T object(arguments...);
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

}  // namespace

TEST(Destruction, AMutexAnswersZeroAfterItsEnd) {
    const CMortal<CPosixMutex> mutex(0);
    EXPECT_TRUE(mutex.HadPointer());
    ASSERT_EQ(nullptr, mutex.Pointer());
    for (const unsigned int timeoutMs : {0u, 50u, kInfiniteTimeout}) {
        EXPECT_EQ(0, mutex->CPosixMutex::Lock(timeoutMs)) << timeoutMs;
    }
    EXPECT_EQ(0, mutex->CPosixMutex::Unlock());
}

TEST(Destruction, ASemaphoreAnswersZeroAfterItsEnd) {
    const CMortal<CPosixSemaphore> semaphore(1, 1);
    EXPECT_TRUE(semaphore.HadPointer());
    ASSERT_EQ(nullptr, semaphore.Pointer());
    for (const unsigned int timeoutMs : {0u, 50u, kInfiniteTimeout}) {
        EXPECT_EQ(0, semaphore->CPosixSemaphore::Lock(timeoutMs)) << timeoutMs;
    }
    EXPECT_EQ(0, semaphore->CPosixSemaphore::Unlock());
}

TEST(Destruction, AnEventAnswersZeroAfterItsEnd) {
    const CMortal<CPosixEvent> event(1, 1);
    EXPECT_TRUE(event.HadPointer());
    ASSERT_EQ(nullptr, event.Pointer());
    EXPECT_EQ(0, event->CPosixEvent::Lock(0));
    EXPECT_EQ(0, event->CPosixEvent::Unlock());
}

TEST(Destruction, AStringHasNoTextAfterItsEnd) {
    const CMortal<CBasicString<char>> string("hello", -1);
    EXPECT_TRUE(string.HadPointer());
    EXPECT_EQ(nullptr, string.Pointer());
}

TEST(Destruction, AFailedAllocationLeavesTheConstructorAsAnException) {
    if (!kHeapIsReplaced) GTEST_SKIP() << kHeapIsTaken;
    EXPECT_TRUE(ConstructionThrows<CPosixMutex>(0));
    EXPECT_TRUE((ConstructionThrows<CPosixSemaphore>(0, 1)));
    EXPECT_TRUE((ConstructionThrows<CPosixEvent>(0, 0)));
    EXPECT_TRUE(ConstructionThrows<CBasicString<char>>());
}
