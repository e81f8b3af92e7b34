// How a host gets a target factory from an encoder component.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/URLAudioTargetFactory.h"

// One output that is about to be written. [stream-thread]
class IAudioTarget : public IUnknown {
public:
    // The factory for this output, to be given to CreateURLAudioTarget; lives as long as this object.
    virtual IURLAudioTargetFactory* GetTargetFactory() = 0;

protected:
    ~IAudioTarget() = default;
};

// Implemented by encoder components beside IExtensionList; called by hosts.
class IAudioTargetOpener : public IUnknown {
public:
    // Stores a target, which the caller releases, that will write to the file at `path`. `extension`, without the dot,
    // chooses the file format, since `path` may be a temporary name. Nothing is written before the encoder starts.
    // False: the reason goes out through `status` (the caller releases it). [any thread]
    virtual bool OpenTarget(const char* path, const char* extension, IAudioTarget** target, IStatus** status) = 0;

protected:
    ~IAudioTargetOpener() = default;
};
