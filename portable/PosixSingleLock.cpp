// Scope lock over a locking object.
#include "portable/PosixSingleLock.h"

CPosixSingleLock::CPosixSingleLock(CPosixSyncObject* object, int lockNow) : m_pObject(object), m_nLockCount(0) {
    if (lockNow != 0) CPosixSingleLock::Lock(kInfiniteTimeout);
}

CPosixSingleLock::~CPosixSingleLock() {
    for (int held = m_nLockCount; held > 0; --held) m_pObject->Unlock();
}

int CPosixSingleLock::Lock(unsigned int timeoutMs) {
    const int result = m_pObject->Lock(timeoutMs);
    if (result != 0) ++m_nLockCount;
    return result;
}

int CPosixSingleLock::Unlock() {
    const int result = m_pObject->Unlock();
    if (result != 0) --m_nLockCount;
    return result;
}
