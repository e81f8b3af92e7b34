// Recursive mutex with millisecond timeouts.
#pragma once

#include "portable/PosixSyncObject.h"

// A thread that holds the mutex may lock it again and unlocks it as many times. [any thread]
class KELO_EXPORT CPosixMutex : public CPosixSyncObject {
public:
    // An `initialOwner` of exactly 1 locks the mutex for the constructing thread; any other value leaves it free.
    explicit CPosixMutex(int initialOwner);

    // Does not unlock a held mutex first.
    ~CPosixMutex() override;

    int Lock(unsigned int timeoutMs) override;

    // 0 when the caller is not the owner.
    int Unlock() override;
};
