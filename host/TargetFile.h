// The output file: written under a temporary name, shown under its own name only when it is complete.
#pragma once

#include <sys/types.h>

#include <string>

#include "host/TemporaryFile.h"

// The absolute path of what an output means that may be a symbolic link: a link stays a link, and what it points to is
// replaced, or made when it is missing. Throws CFailure for a circle of links.
std::string FileAtTheEndOfLinks(const std::string& given);

// Throws CFailure, naming the output as it was given. One thread.
class CTargetFile {
public:
    // Makes an empty private file beside the output. An output that exists must be a regular file that may be written
    // and must not be `source`, a path that need not exist. An output that is a symbolic link stays one: the file at
    // its end is meant, which need not exist.
    CTargetFile(std::string output, const char* source);

    // Gone with this object unless Commit succeeded.
    const std::string& GetTemporaryPath() const { return m_temporary.GetPath(); }

    // Brings what was written to the disk, so that a power loss after Commit cannot leave less than all of it.
    void Sync();

    // Gives the file the mode of the output that it replaces, or of a newly made one, and puts it in the output's
    // place.
    void Commit();

private:
    std::string m_strGiven;
    std::string m_strOutput;
    mode_t m_nMode;
    CTemporaryFile m_temporary;
    bool m_bSynced = false;
};
