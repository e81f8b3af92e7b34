// Components of one type in their preferred order.
#pragma once

#include "com/AudioComponent.h"
#include "com/ComponentEnum.h"
#include "com/Unknown.h"

// Implemented by the manager; called by hosts. [any thread] while nobody loads or unloads plug-ins.
class IComponentOrderMgr : public IUnknown {
public:
    // The order cannot be changed here: always false.
    virtual bool Set(IAudioComponent** components, int count) = 0;

    // Stores a list, which the caller releases, of the components of `type`. Only ACT_DECODER can be listed: any other
    // type or a null `components` gives false and stores nothing.
    virtual bool Get(EAudioComponentType type, IComponentEnum** components) = 0;

protected:
    ~IComponentOrderMgr() = default;
};
