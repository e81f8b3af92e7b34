// What a plug-in provides: components.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"

class IAudioPluginMgr;

enum EAudioComponentType : unsigned int {
    ACT_COLLECTION = 2,  // groups further components and lists them through IComponentEnum
    ACT_DECODER = 3,
    ACT_ENCODER = 4,
    ACT_CONVERTOR = 5,    // the first one supplies the manager's IConvertorFactory
    ACT_URL_HANDLER = 6,  // the first one supplies the manager's IURLSourceHandler
};

// Implemented by plug-ins; called by the manager and by hosts. Everything beyond these operations is reached through
// QueryInterface.
class IAudioComponent : public IUnknown {
public:
    // Display name, valid while the component lives. [any thread]
    virtual const char* GetName() = 0;

    // Constant for the component's life. [any thread]
    virtual EAudioComponentType GetType() = 0;

    // Called once after loading, on the thread that loads the plug-ins; `manager` is borrowed. False rejects the
    // component; the reason goes out through `status` (the caller releases it). Must not load or unload plug-ins.
    virtual bool Initialize(IAudioPluginMgr* manager, IStatus** status) = 0;

    // Called once before the final release at unload, on the thread that unloads the plug-ins. Must not load or unload
    // plug-ins; components that have ended before are listed no more.
    virtual void Terminate() = 0;

protected:
    ~IAudioComponent() = default;
};
