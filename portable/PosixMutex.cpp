// Recursive mutex: a timed waiter polls the main mutex under the guard and sleeps on the condition in between.
#include "portable/PosixMutex.h"

#include <errno.h>
#include <pthread.h>

#include "portable/Deadline.h"
#include "portable/SurvivingStore.h"

struct SPosixMutexRecord {
    pthread_mutex_t m_main;
    pthread_mutex_t m_guard;
    pthread_cond_t m_unlocked;
};

namespace {

int LockBefore(SPosixMutexRecord& record, unsigned int timeoutMs) {
    const timespec deadline = DeadlineFromNow(timeoutMs);
    for (;;) {
        pthread_mutex_lock(&record.m_guard);
        const bool locked = pthread_mutex_trylock(&record.m_main) == 0;
        const bool timedOut =
            !locked && pthread_cond_timedwait(&record.m_unlocked, &record.m_guard, &deadline) == ETIMEDOUT;
        pthread_mutex_unlock(&record.m_guard);
        if (locked) return 1;
        if (timedOut) return 0;
    }
}

}  // namespace

CPosixMutex::CPosixMutex(int initialOwner) {
    m_pMutexRecord = new SPosixMutexRecord;
    pthread_mutex_init(&m_pMutexRecord->m_guard, nullptr);
    pthread_cond_init(&m_pMutexRecord->m_unlocked, nullptr);

    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m_pMutexRecord->m_main, &attributes);
    pthread_mutexattr_destroy(&attributes);

    if (initialOwner == 1) pthread_mutex_lock(&m_pMutexRecord->m_main);
}

CPosixMutex::~CPosixMutex() {
    if (m_pMutexRecord == nullptr) return;
    pthread_mutex_destroy(&m_pMutexRecord->m_main);
    pthread_cond_destroy(&m_pMutexRecord->m_unlocked);
    pthread_mutex_destroy(&m_pMutexRecord->m_guard);
    delete m_pMutexRecord;
    StoreSurvivingNull(m_pMutexRecord);
}

int CPosixMutex::Lock(unsigned int timeoutMs) {
    if (m_pMutexRecord == nullptr) return 0;
    if (timeoutMs == 0) return pthread_mutex_trylock(&m_pMutexRecord->m_main) == 0 ? 1 : 0;
    if (timeoutMs == kInfiniteTimeout) {
        pthread_mutex_lock(&m_pMutexRecord->m_main);
        return 1;
    }
    return LockBefore(*m_pMutexRecord, timeoutMs);
}

int CPosixMutex::Unlock() {
    if (m_pMutexRecord == nullptr) return 0;
    pthread_mutex_lock(&m_pMutexRecord->m_guard);
    const bool unlocked = pthread_mutex_unlock(&m_pMutexRecord->m_main) == 0;
    if (unlocked) pthread_cond_signal(&m_pMutexRecord->m_unlocked);
    pthread_mutex_unlock(&m_pMutexRecord->m_guard);
    return unlocked ? 1 : 0;
}
