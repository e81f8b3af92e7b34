// A component that only counts its references.
#pragma once

#include "com/AudioComponent.h"

class CCountedComponent final : public IAudioComponent {
public:
    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }
    int QueryInterface(unsigned long, void** face) override {
        if (face == nullptr) return kInterfaceNoOutPointer;
        *face = nullptr;
        return kInterfaceMissing;
    }
    const char* GetName() override { return "counted"; }
    EAudioComponentType GetType() override { return ACT_DECODER; }
    bool Initialize(IAudioPluginMgr*, IStatus**) override { return true; }
    void Terminate() override {}

    unsigned int m_nReferences = 0;
};
