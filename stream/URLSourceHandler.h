// Fetching of remote sources.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"

// Classes of source names; the remote ones are also the bits of a handler's protocol flags.
enum EURLType : int {
    URL_UNKNOWN = 0,
    URL_LOCAL_PATH = 1,
    URL_HTTP = 2,
    URL_FTP = 4,
};

// Size of the buffer that Fetch fills, terminator included.
constexpr int kLocalPathCapacity = 4096;

// Implemented by URL handler components; called by the manager.
class IURLSourceHandler : public IUnknown {
public:
    // URL_HTTP and URL_FTP as bits. [any thread]
    virtual unsigned int GetProtocols() = 0;

    // Makes the resource available as a local file and writes its absolute path into `localPath`, a buffer of
    // kLocalPathCapacity bytes. The handler keeps and removes the file. `reserved` is 0.
    // False: the reason goes out through `status` (the caller releases it). [any thread]
    virtual bool Fetch(const char* url, char* localPath, int reserved, IStatus** status) = 0;

protected:
    ~IURLSourceHandler() = default;
};
