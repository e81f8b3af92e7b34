// Scope lock over a locking object.
#pragma once

#include "portable/PosixSyncObject.h"

// Counts its own successful locks and gives back exactly that many at its end.
// An automatic variable of one thread. [any thread]
class KELO_EXPORT CPosixSingleLock {
public:
    // `object` is borrowed, must not be null and must outlive the scope lock; a non-zero `lockNow` waits without limit.
    CPosixSingleLock(CPosixSyncObject* object, int lockNow);
    virtual ~CPosixSingleLock();

    // Results are the object's; Unlock gives back one lock that was counted here.
    virtual int Lock(unsigned int timeoutMs);
    virtual int Unlock();

    CPosixSingleLock(const CPosixSingleLock&) = delete;
    CPosixSingleLock& operator=(const CPosixSingleLock&) = delete;

private:
    CPosixSyncObject* m_pObject;
    int m_nLockCount;
};
