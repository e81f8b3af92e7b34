// Where a component comes from.
#pragma once

#include "com/Unknown.h"
#include "portable/BasicString.h"

class IAudioComponent;

// The identity of a component: the plug-in that provides it and its place there.
// Written as text it is "%s*%d" of both fields.
struct COMPONENT_INFO {
    // File name of the plug-in, with extension, without directory.
    CBasicString<char> m_strLibraryFileName;

    // 0 for a plug-in's primary component, the position in its collection for a member of one.
    int m_nIndex = 0;
};

// Implemented by the manager; called by the settings dialog and by hosts.
class IAudioPluginMgrInternal : public IUnknown {
public:
    // False, with `info` unchanged, for a component that is not registered.
    // [any thread] while nobody loads or unloads plug-ins.
    virtual bool GetComponentInfo(IAudioComponent* component, COMPONENT_INFO* info) = 0;

protected:
    ~IAudioPluginMgrInternal() = default;
};
