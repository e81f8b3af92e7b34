// Components of a test's own, which it registers in a manager.
#pragma once

#include <utility>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "com/QueryTable.h"

// A component of automatic life that shows its count.
class CCountedComponent : public IAudioComponent {
public:
    explicit CCountedComponent(EAudioComponentType type, const char* name = "counted") : m_pName(name), m_eType(type) {}

    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }
    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face, {{IID_IUnknown, this}, {IID_IComponentEnum, m_pMembers}});
    }
    const char* GetName() override { return m_pName; }
    EAudioComponentType GetType() override { return m_eType; }
    bool Initialize(IAudioPluginMgr*, IStatus**) override { return true; }
    void Terminate() override {}

    // The component with the reference that a registration takes over.
    IAudioComponent* HandOver() {
        AddRef();
        return this;
    }

    unsigned int m_nReferences = 0;
    IComponentEnum* m_pMembers = nullptr;

private:
    const char* m_pName;
    EAudioComponentType m_eType;
};

class CMembers : public IComponentEnum {
public:
    explicit CMembers(std::vector<IAudioComponent*> members) : m_vMembers(std::move(members)) {}

    unsigned int AddRef() override { return 1; }
    unsigned int Release() override {
        ++m_nReleases;
        return 0;
    }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }
    int GetCount() override { return static_cast<int>(m_vMembers.size()); }
    bool GetComponent(int index, IAudioComponent** component) override {
        *component = m_vMembers[static_cast<std::size_t>(index)];
        if (*component != nullptr) (*component)->AddRef();
        return *component != nullptr;
    }

    int m_nReleases = 0;

private:
    std::vector<IAudioComponent*> m_vMembers;
};
