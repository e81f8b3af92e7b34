// Why an operation failed: error codes, status interfaces.
#pragma once

#include "com/Unknown.h"

// Every error has the high bit set; 0 means no error.
enum EAudioError : unsigned int {
    AE_NONE = 0,
    AE_BAD_ARGUMENT = 0x80000001,      // null pointer or zero size
    AE_BUFFER_TOO_SMALL = 0x80000002,  // a converting read whose request is too small to hold whole frames
    AE_UNKNOWN_URL = 0x80000003,       // neither an absolute path nor an http:// or ftp:// URL
    AE_NO_DECODER = 0x80000004,        // no component opened the source
    AE_PLUGINS_LOADED = 0x80000013,    // refused while plug-ins are loaded
};

// A matter between hosts and plug-ins; the library sets none.
enum EStatusCategory : unsigned int {
    SC_NONE = 0,
};

// Implemented by CStatus and by plug-ins; read and released by whoever passed the IStatus** out-parameter.
// [any thread]
class IStatus : public IUnknown {
public:
    // Free text; empty, never null, for a status built from a code. Valid until the status is released.
    virtual const char* GetDescription() = 0;

    // AE_NONE for a status built from an errno value or a text.
    virtual EAudioError GetAudioError() = 0;

    // An errno value, 0 when none.
    virtual unsigned int GetSysError() = 0;

protected:
    ~IStatus() = default;
};

// Offered only by a status that has a category. [any thread]
class IStatusCategory : public IUnknown {
public:
    // Never SC_NONE: a status without a category does not offer this interface.
    virtual EStatusCategory GetCategory() = 0;

protected:
    ~IStatusCategory() = default;
};
