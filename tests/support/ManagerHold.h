// The process's manager for the length of a test.
#pragma once

#include "pluginmgr/AudioPluginMgr.h"
#include "pluginmgr/GetAudioPluginMgr.h"

namespace support {

// Owns one reference; the last one ends the manager. Declared after the fakes that the manager is given.
class CManagerHold {
public:
    CManagerHold() { GetAudioPluginMgr(&m_pManager); }
    ~CManagerHold() { Release(); }

    CManagerHold(const CManagerHold&) = delete;
    CManagerHold& operator=(const CManagerHold&) = delete;

    CAudioPluginMgr* Get() const { return static_cast<CAudioPluginMgr*>(m_pManager); }
    CAudioPluginMgr* operator->() const { return Get(); }

    // Gives the reference back early.
    void Release() {
        if (m_pManager != nullptr) m_pManager->Release();
        m_pManager = nullptr;
    }

    // Puts the component into the registry as loading does, with a reference that the registry keeps.
    void Register(IAudioComponent& component, int index = 0) const {
        component.AddRef();
        Get()->AddComponent(&component, "fake.so", index);
    }

private:
    IAudioPluginMgr* m_pManager = nullptr;
};

}  // namespace support
