// A list of components.
#pragma once

#include "com/Unknown.h"

class IAudioComponent;

// Implemented by CComponentEnum, by the manager over its registry and by collection components of plug-ins.
// [any thread] while nobody loads or unloads plug-ins.
class IComponentEnum : public IUnknown {
public:
    // Components that GetComponent knows: 0 to GetCount() - 1.
    virtual int GetCount() = 0;

    // Stores component `index` with one reference that the caller owns. False when there is none.
    virtual bool GetComponent(int index, IAudioComponent** component) = 0;

protected:
    ~IComponentEnum() = default;
};
