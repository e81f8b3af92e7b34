// What the components of this plug-in share.
#pragma once

#include "com/AudioComponent.h"
#include "com/ReferenceCount.h"

// A component that lives as long as the plug-in stays loaded: its count, which starts at 1, deletes nothing, so that
// references nobody gives back do no harm. [any thread]
template <typename... TFaces>
class CComponent : public IAudioComponent, public TFaces... {
public:
    CComponent() : m_references(1) {}

    CComponent(const CComponent&) = delete;
    CComponent& operator=(const CComponent&) = delete;

    unsigned int AddRef() override { return m_references.Increment(); }
    unsigned int Release() override { return m_references.Decrement(); }

    bool Initialize(IAudioPluginMgr* /*manager*/, IStatus** /*status*/) override { return true; }
    void Terminate() override {}

protected:
    ~CComponent() = default;

private:
    CReferenceCount m_references;
};
