// Counting semaphore with millisecond timeouts.
#pragma once

#include "portable/PosixSyncObject.h"

// The count lies between its initial value and its maximum. [any thread]
class KELO_EXPORT CPosixSemaphore : public CPosixSyncObject {
public:
    // Both counts are stored unchecked; an initial count above the maximum can be taken in full.
    CPosixSemaphore(int initialCount, int maximumCount);
    ~CPosixSemaphore() override;

    // Takes one unit.
    int Lock(unsigned int timeoutMs) override;

    // Gives one unit back; 1 also when the count stands at its maximum and nothing changes.
    int Unlock() override;

private:
    int m_nCount;
    int m_nMaximum;
};
