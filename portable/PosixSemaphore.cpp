// Counting semaphore over a mutex and a condition; the mutex is never held across a call out of the object.
#include "portable/PosixSemaphore.h"

#include <errno.h>
#include <pthread.h>

#include "portable/Deadline.h"
#include "portable/SurvivingStore.h"

struct SPosixSemaphoreRecord {
    pthread_mutex_t m_mutex;
    pthread_cond_t m_raised;
};

namespace {

int LockWithoutLimit(SPosixSemaphoreRecord& record, int& count) {
    pthread_mutex_lock(&record.m_mutex);
    while (count <= 0) pthread_cond_wait(&record.m_raised, &record.m_mutex);
    --count;
    pthread_mutex_unlock(&record.m_mutex);
    return 1;
}

int LockBefore(SPosixSemaphoreRecord& record, int& count, unsigned int timeoutMs) {
    const timespec deadline = DeadlineFromNow(timeoutMs);
    for (;;) {
        pthread_mutex_lock(&record.m_mutex);
        const bool taken = count > 0;
        if (taken) --count;
        const bool timedOut =
            !taken && pthread_cond_timedwait(&record.m_raised, &record.m_mutex, &deadline) == ETIMEDOUT;
        pthread_mutex_unlock(&record.m_mutex);
        if (taken) return 1;
        if (timedOut) return 0;
    }
}

}  // namespace

CPosixSemaphore::CPosixSemaphore(int initialCount, int maximumCount)
    : m_nCount(initialCount), m_nMaximum(maximumCount) {
    m_pSemaphoreRecord = new SPosixSemaphoreRecord;
    pthread_mutex_init(&m_pSemaphoreRecord->m_mutex, nullptr);
    pthread_cond_init(&m_pSemaphoreRecord->m_raised, nullptr);
}

CPosixSemaphore::~CPosixSemaphore() {
    if (m_pSemaphoreRecord == nullptr) return;
    pthread_mutex_destroy(&m_pSemaphoreRecord->m_mutex);
    pthread_cond_destroy(&m_pSemaphoreRecord->m_raised);
    delete m_pSemaphoreRecord;
    StoreSurvivingNull(m_pSemaphoreRecord);
}

int CPosixSemaphore::Lock(unsigned int timeoutMs) {
    if (m_pSemaphoreRecord == nullptr) return 0;
    if (timeoutMs == kInfiniteTimeout) return LockWithoutLimit(*m_pSemaphoreRecord, m_nCount);
    if (timeoutMs != 0) return LockBefore(*m_pSemaphoreRecord, m_nCount, timeoutMs);

    pthread_mutex_lock(&m_pSemaphoreRecord->m_mutex);
    const bool taken = m_nCount >= 1;
    if (taken) --m_nCount;
    pthread_mutex_unlock(&m_pSemaphoreRecord->m_mutex);
    return taken ? 1 : 0;
}

int CPosixSemaphore::Unlock() {
    if (m_pSemaphoreRecord == nullptr) return 0;
    pthread_mutex_lock(&m_pSemaphoreRecord->m_mutex);
    if (m_nCount < m_nMaximum) {
        ++m_nCount;
        pthread_cond_signal(&m_pSemaphoreRecord->m_raised);
    }
    pthread_mutex_unlock(&m_pSemaphoreRecord->m_mutex);
    return 1;
}
