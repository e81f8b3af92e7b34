// Common face of the locking objects.
#pragma once

#include "portable/Export.h"

// Timeouts are milliseconds; 0 polls, kInfiniteTimeout waits without limit, any other value waits until
// now plus the timeout on the wall clock.
constexpr unsigned int kInfiniteTimeout = 0xFFFFFFFFu;

struct SPosixMutexRecord;
struct SPosixSemaphoreRecord;

// A lock that any number of threads may share. [any thread]
// Results are 1 for success and 0 for failure or timeout. After destruction every operation returns 0.
class KELO_EXPORT CPosixSyncObject {
public:
    virtual ~CPosixSyncObject();

    // Takes the lock, waiting at most that long; Unlock gives it back.
    virtual int Lock(unsigned int timeoutMs) = 0;
    virtual int Unlock() = 0;

    CPosixSyncObject(const CPosixSyncObject&) = delete;
    CPosixSyncObject& operator=(const CPosixSyncObject&) = delete;

protected:
    CPosixSyncObject();

    // The POSIX objects behind the lock, owned and freed by the derived class.
    union {
        SPosixMutexRecord* m_pMutexRecord;
        SPosixSemaphoreRecord* m_pSemaphoreRecord;
    };
};
