// A directory of this process's own below the temporary one.
#pragma once

#include <sys/types.h>

#include <string>

#include "plugins/shared/FileDescriptor.h"

// Nobody but the user can look into it (mode 0700). Removed with everything in it by the destructor, unless somebody
// else has removed or replaced it by then. [any thread]
class CPrivateDirectory {
public:
    // Below the directory that TMPDIR or its like names, or /tmp. Throws the reason why there is none.
    CPrivateDirectory();
    ~CPrivateDirectory();

    CPrivateDirectory(const CPrivateDirectory&) = delete;
    CPrivateDirectory& operator=(const CPrivateDirectory&) = delete;

    // Absolute.
    const std::string& Path() const { return m_strPath; }

    // For operations relative to the directory itself, whatever its path leads to.
    int Descriptor() const { return m_descriptor.Get(); }

    // Whether this process has made it, and not the one that it was forked from.
    bool IsOwn() const;

    // Whether the path still leads to the directory.
    bool IsInPlace() const;

private:
    std::string m_strPath;
    CFileDescriptor m_descriptor;
    pid_t m_nProcess;  // a forked child does not remove what it did not make
};
