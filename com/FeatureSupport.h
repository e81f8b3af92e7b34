// Feature switches.
#pragma once

#include "com/Unknown.h"

enum EAudioFeature : unsigned int {
    AF_BASIC = 0,             // the prerequisite of AF_ADVANCED_FORMATS
    AF_ADVANCED_FORMATS = 1,  // streams may use formats with a qualifier
};

// Implemented by the manager and by convertor factories. [host set-up]
class IFeatureSupport : public IUnknown {
public:
    // False for a feature that the object does not know.
    virtual bool IsSupported(EAudioFeature feature) = 0;

    // False when the feature cannot be switched as asked; nothing changes then.
    virtual bool EnableSupport(EAudioFeature feature, bool enable) = 0;

protected:
    ~IFeatureSupport() = default;
};
