// Where the members of this folder's classes lie.
#include <errno.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <vector>

#include "portable/BasicString.h"
#include "portable/DirEntry.h"
#include "portable/PortableFile.h"
#include "portable/PortableTime.h"
#include "portable/PosixEvent.h"
#include "portable/PosixMutex.h"
#include "portable/PosixSemaphore.h"
#include "portable/PosixSingleLock.h"
#include "portable/WindowsTime.h"
#include "tests/portable/WaitSupport.h"
#include "tests/support/MemberPlaces.h"
#include "tests/support/SlotTable.h"

namespace support {

struct SStringMembers {};
std::vector<SPlace> PlacesOf(SStringMembers);
template struct SMembers<SStringMembers, &CBasicString<char>::m_pBuffer, &CBasicString<char>::m_nCapacity,
                         &CBasicString<char>::m_nLength>;

struct SFileMembers {};
std::vector<SPlace> PlacesOf(SFileMembers);
template struct SMembers<SFileMembers, &CPortableFile::m_strName, &CPortableFile::m_nDescriptor,
                         &CPortableFile::m_nStatus, &CPortableFile::m_eMode>;

struct SEntryMembers {};
std::vector<SPlace> PlacesOf(SEntryMembers);
template struct SMembers<SEntryMembers, &CDirEntry::m_strMask, &CDirEntry::m_nSkipAll,
                         &CDirEntry::m_nRequiredAttributes, &CDirEntry::m_nExcludedAttributes,
                         &CDirEntry::m_nMatchFlags, &CDirEntry::m_bValid, &CDirEntry::m_pFile,
                         &CDirEntry::m_strDirectory, &CPosixDirEntry::m_pStream, &CPosixDirEntry::m_info>;

struct STimeMembers {};
std::vector<SPlace> PlacesOf(STimeMembers);
template struct SMembers<STimeMembers, &CPortableTime::m_pSeconds, &CPortableTime::m_fileTime>;

struct SSpanMembers {};
std::vector<SPlace> PlacesOf(SSpanMembers);
template struct SMembers<SSpanMembers, &CPortableTimeSpan::m_pSeconds>;

struct SEventMembers {};
std::vector<SPlace> PlacesOf(SEventMembers);
template struct SMembers<SEventMembers, &CPosixSyncObject::m_pMutexRecord, &CPosixSyncObject::m_pSemaphoreRecord,
                         &CPosixSemaphore::m_nCount, &CPosixSemaphore::m_nMaximum, &CPosixEvent::m_nManualReset>;

struct SScopeLockMembers {};
std::vector<SPlace> PlacesOf(SScopeLockMembers);
template struct SMembers<SScopeLockMembers, &CPosixSingleLock::m_pObject, &CPosixSingleLock::m_nLockCount>;

}  // namespace support

namespace {

using Places = std::vector<support::SPlace>;

TEST(Layout, OfAStringIsBufferCapacityLength) {
    EXPECT_EQ(PlacesOf(support::SStringMembers()), (Places{{8, 8}, {16, 4}, {20, 4}}));
    EXPECT_EQ(sizeof(CBasicString<char>), 24U);
}

TEST(Layout, OfAFileIsNameDescriptorStatusMode) {
    EXPECT_EQ(PlacesOf(support::SFileMembers()), (Places{{8, 24}, {32, 4}, {36, 4}, {40, 4}}));
    EXPECT_EQ(sizeof(CPortableFile), 48U);
}

TEST(Layout, OfAnEnumerationIsMaskFiltersFlagFileDirectoryStreamRecord) {
    EXPECT_EQ(PlacesOf(support::SEntryMembers()),
              (Places{{8, 24}, {32, 4}, {36, 4}, {40, 4}, {44, 4}, {48, 4}, {56, 8}, {64, 24}, {88, 8}, {96, 120}}));
}

TEST(Layout, OfATimeIsItsCellThenTheFileTime) {
    EXPECT_EQ(PlacesOf(support::STimeMembers()), (Places{{8, 8}, {16, 8}}));
    EXPECT_EQ(sizeof(CPortableTime), 24U);
    const CPortableTime time(1234567890L);
    EXPECT_EQ(*FieldAt<const long*>(&time, 8), 1234567890L);
    const FILETIME& converted = time;
    EXPECT_EQ(reinterpret_cast<const char*>(&converted), reinterpret_cast<const char*>(&time) + 16);
}

TEST(Layout, OfATimeSpanIsItsCell) {
    EXPECT_EQ(PlacesOf(support::SSpanMembers()), (Places{{8, 8}}));
    EXPECT_EQ(sizeof(CPortableTimeSpan), 16U);
    const CPortableTimeSpan span(77);
    EXPECT_EQ(*FieldAt<const long*>(&span, 8), 77L);
}

TEST(Layout, OfAFileTimeIsItsLowHalfThenItsHighHalf) {
    EXPECT_EQ(support::PlaceOf(&FILETIME::dwLowDateTime), (support::SPlace{0, 4}));
    EXPECT_EQ(support::PlaceOf(&FILETIME::dwHighDateTime), (support::SPlace{4, 4}));
}

TEST(Layout, OfASystemTimeIsEightFieldsOfTwoBytes) {
    using S = SYSTEMTIME;
    std::size_t offset = 0;
    for (unsigned short S::*const field :
         {&S::wYear, &S::wMonth, &S::wDayOfWeek, &S::wDay, &S::wHour, &S::wMinute, &S::wSecond, &S::wMilliseconds}) {
        EXPECT_EQ(support::PlaceOf(field), (support::SPlace{offset, 2}));
        offset += 2;
    }
    EXPECT_EQ(sizeof(SYSTEMTIME), offset);
}

TEST(Layout, OfTheLocksIsRecordCountMaximumFlag) {
    EXPECT_EQ(PlacesOf(support::SEventMembers()), (Places{{8, 8}, {8, 8}, {16, 4}, {20, 4}, {24, 4}}));
    EXPECT_EQ(sizeof(CPosixMutex), 16U);
    EXPECT_EQ(sizeof(CPosixSemaphore), 24U);
    EXPECT_EQ(sizeof(CPosixEvent), 32U);
}

TEST(Layout, OfAScopeLockIsObjectThenCount) {
    EXPECT_EQ(PlacesOf(support::SScopeLockMembers()), (Places{{8, 8}, {16, 4}}));
    EXPECT_EQ(sizeof(CPosixSingleLock), 24U);
}

// What the pointer of a locking object points at.
struct SMutexRecord {
    pthread_mutex_t m_main;
    pthread_mutex_t m_guard;
    pthread_cond_t m_unlocked;
};

struct SSemaphoreRecord {
    pthread_mutex_t m_mutex;
    pthread_cond_t m_raised;
};

TEST(Layout, OfAMutexRecordIsMainMutexGuardCondition) {
    CPosixMutex mutex(1);
    auto* const record = FieldAt<SMutexRecord*>(&mutex, 8);
    EXPECT_EQ(OnAnotherThread([record] { return pthread_mutex_trylock(&record->m_main); }), EBUSY);
    EXPECT_EQ(mutex.Unlock(), 1);
    EXPECT_EQ(OnAnotherThread([record] {
                  const int locked = pthread_mutex_trylock(&record->m_main);
                  pthread_mutex_unlock(&record->m_main);
                  return locked;
              }),
              0);

    // An unlock waits for the guard and signals the condition.
    EXPECT_EQ(mutex.Lock(0), 1);
    pthread_mutex_lock(&record->m_guard);
    auto released = std::async(std::launch::async, [&] {
        const int locked = mutex.Lock(kInfiniteTimeout);
        return locked + mutex.Unlock();
    });
    EXPECT_TRUE(StillWaiting(released));
    pthread_mutex_unlock(&record->m_main);
    EXPECT_TRUE(StillWaiting(released));
    pthread_cond_wait(&record->m_unlocked, &record->m_guard);
    pthread_mutex_unlock(&record->m_guard);
    EXPECT_EQ(released.get(), 2);
}

TEST(Layout, OfASemaphoreRecordIsMutexThenCondition) {
    CPosixSemaphore semaphore(0, 1);
    auto* const record = FieldAt<SSemaphoreRecord*>(&semaphore, 8);
    pthread_mutex_lock(&record->m_mutex);
    auto raised = std::async(std::launch::async, [&semaphore] { return semaphore.Unlock(); });
    EXPECT_TRUE(StillWaiting(raised));
    pthread_cond_wait(&record->m_raised, &record->m_mutex);
    EXPECT_EQ(FieldAt<int>(&semaphore, 16), 1);
    pthread_mutex_unlock(&record->m_mutex);
    EXPECT_EQ(raised.get(), 1);
}

}  // namespace
