// How decoder components open files, and which.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

// First face of an opener; no reference counting of its own.
class IAudioFileOpenerOperations {
public:
    // Capabilities of this opener. [any thread]
    virtual EAuxFlags GetAuxFlags() = 0;

    // Opens the file at `path` and stores the decoder stream with one reference that the caller owns.
    // False: the reason goes out through `status` (the caller releases it). [any thread]
    virtual bool Open(const char* path, IUnknown** stream, EAuxFlags required, EAuxFlags excluded,
                      IStatus** status) = 0;

protected:
    ~IAudioFileOpenerOperations() = default;
};

// Second face of an opener, one pointer further on.
class IAudioFileOpenerControl : public IUnknown {
public:
    // Bit 0 says whether the decoder is enabled. [any thread]
    virtual unsigned int GetOpenerState() = 0;

protected:
    ~IAudioFileOpenerControl() = default;
};

constexpr unsigned int kOpenerEnabled = 1;

// Implemented by decoder components; called by the manager.
// QueryInterface gives the address of the first face, the second lies directly behind it.
class IAudioFileOpener : public IAudioFileOpenerOperations, public IAudioFileOpenerControl {
protected:
    ~IAudioFileOpener() = default;
};

// Implemented by decoder and encoder components; called by the manager and by hosts. [any thread]
class IExtensionList : public IUnknown {
public:
    // Extensions that GetAt knows: 0 to GetCount() - 1.
    virtual int GetCount() = 0;

    // Extension `n` without the leading dot; valid while the component lives.
    virtual const char* GetAt(int n) = 0;

protected:
    ~IExtensionList() = default;
};
