// Base of the components of a plug-in.
#pragma once

#include <atomic>
#include <string>
#include <utility>

#include "com/AudioComponent.h"
#include "com/QueryTable.h"
#include "sdk/Guard.h"
#include "sdk/InterfaceIdentity.h"

// A component lives as long as its plug-in stays loaded. Its references are only counted, from 0, and one release too
// many changes nothing: converting targets give back a reference of the convertor factory that nobody took for them.
// Answers identity 0 with IAudioComponent and each of TFaces with its own identity. [any thread] but for Begin and End,
// which run on the thread that loads and unloads.
template <typename... TFaces>
class CComponent : public IAudioComponent, public TFaces... {
public:
    CComponent(const CComponent&) = delete;
    CComponent& operator=(const CComponent&) = delete;

    unsigned int AddRef() final { return ++m_nReferences; }

    unsigned int Release() final {
        unsigned int count = m_nReferences;
        while (count != 0 && !m_nReferences.compare_exchange_weak(count, count - 1)) {
        }
        return count == 0 ? 0 : count - 1;
    }

    int QueryInterface(unsigned long identity, void** face) override {
        return AnswerQuery(*this, identity, face,
                           {{IID_IUnknown, static_cast<IAudioComponent*>(this)},
                            {kIdentityOf<TFaces>, FaceOf(static_cast<TFaces*>(this))}...});
    }

    const char* GetName() final { return m_strName.c_str(); }
    EAudioComponentType GetType() final { return m_eType; }

    bool Initialize(IAudioPluginMgr* manager, IStatus** status) final {
        m_pManager = manager;
        const bool accepted = Guarded(status, m_strName, [this] {
            Begin();
            return true;
        });
        if (!accepted) m_pManager = nullptr;
        return accepted;
    }

    void Terminate() final {
        End();
        m_pManager = nullptr;
    }

protected:
    // The name that people see.
    CComponent(std::string name, EAudioComponentType type) : m_strName(std::move(name)), m_eType(type) {}
    ~CComponent() = default;

    // After loading. An exception rejects the component. Must not load or unload plug-ins.
    virtual void Begin() {}

    // Before unloading. Must not load or unload plug-ins.
    virtual void End() noexcept {}

    // Between Begin and End, else null.
    IAudioPluginMgr* Manager() const { return m_pManager; }

    // As given.
    const std::string& Name() const { return m_strName; }

private:
    std::string m_strName;
    EAudioComponentType m_eType;
    IAudioPluginMgr* m_pManager = nullptr;  // borrowed
    std::atomic<unsigned int> m_nReferences{0};
};
