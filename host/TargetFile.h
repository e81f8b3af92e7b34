// The output file: written under a temporary name, shown under its own name only when it is complete.
#pragma once

#include <sys/types.h>

#include <string>

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

    // Removes the temporary unless Commit succeeded.
    ~CTargetFile();

    CTargetFile(const CTargetFile&) = delete;
    CTargetFile& operator=(const CTargetFile&) = delete;

    const std::string& GetTemporaryPath() const { return m_strTemporary; }

    // Gives the file the mode of the output that it replaces, or of a newly made one, and puts it in the output's
    // place.
    void Commit();

private:
    std::string m_strGiven;
    std::string m_strOutput;
    mode_t m_nMode;
    std::string m_strTemporary;
};
