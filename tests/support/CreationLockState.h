// Whether the manager's creation lock is held, asked from outside.
#pragma once

#include <thread>

#include "pluginmgr/AudioPluginMgr.h"

// By any thread, the caller's own too.
inline bool IsCreationLockFree() {
    int locked = 0;
    std::thread([&] {
        locked = m_sectPMCreation.Lock(0);
        if (locked != 0) m_sectPMCreation.Unlock();
    }).join();
    return locked != 0;
}
