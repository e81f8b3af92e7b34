// Scope lock over the manager's creation lock.
#pragma once

#include "pluginmgr/AudioPluginMgr.h"

// Calls the lock itself and not its table of operations: a late caller at the process's end may meet the lock after
// its destruction, and then passes without a lock. [any thread]
class CCreationLock {
public:
    CCreationLock() : m_bLocked(m_sectPMCreation.CPosixMutex::Lock(kInfiniteTimeout) != 0) {}
    ~CCreationLock() {
        if (m_bLocked) m_sectPMCreation.CPosixMutex::Unlock();
    }

    CCreationLock(const CCreationLock&) = delete;
    CCreationLock& operator=(const CCreationLock&) = delete;

private:
    bool m_bLocked;
};
