// Settings that a program reads and changes without a dialog.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"

// Implemented by components and by targets that are about to be written; called by hosts.
// Texts are zero-terminated UTF-8 owned by the object, valid until the next call. A component's settings hold for what
// it makes afterwards, a target's settings for that target. [any thread] on components, [stream-thread] on targets
class INamedSettings : public IUnknown {
public:
    // Settings that the other operations know: 0 to GetSettingCount() - 1.
    virtual int GetSettingCount() = 0;

    // Name of setting `n`, such as "quality"; null when there is none.
    virtual const char* GetSettingName(int n) = 0;

    // What setting `n` takes, such as "quick|high|very-high" or "32 to 320 kbit/s"; null when there is none.
    virtual const char* GetSettingValues(int n) = 0;

    // The value that holds; null for a name that the object does not have.
    virtual const char* GetSetting(const char* name) = 0;

    // False for an unknown name or value; nothing changes then, and the reason goes out through `status` (the caller
    // releases it).
    virtual bool SetSetting(const char* name, const char* value, IStatus** status) = 0;

protected:
    ~INamedSettings() = default;
};
