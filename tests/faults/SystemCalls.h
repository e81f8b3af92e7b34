// Faults of the system calls that the library makes.
#pragma once

#include <sys/vfs.h>

#include <climits>
#include <cstddef>
#include <vector>

enum class ECall {
    Open,
    Read,
    Write,
    Seek,
    Truncate,
    Close,
    OpenDirectory,
    ReadDirectory,
    ResolvePath,
    ReadLink,
    MakeTemporary,
    NameTemporary,
    CurrentDirectory,
    RemoveFile,
    RemoveName,
    RemoveDirectory,
};

struct SFault {
    ECall m_eCall;
    int m_nError;            // the errno value to fail with; 0 to succeed with m_nMost bytes at most
    int m_nFirst = 1;        // counted from 1
    int m_nTimes = INT_MAX;  // calls that fail from the first on
    std::size_t m_nMost = 1;
};

// Holds as long as it lives, for calls that the library's own code makes; the others, and those of the tests and of
// other libraries, go through. A close that fails closes all the same, as on Linux. One at a time. One thread.
class CFaultyCall {
public:
    explicit CFaultyCall(const SFault& fault);
    ~CFaultyCall();

    CFaultyCall(const CFaultyCall&) = delete;
    CFaultyCall& operator=(const CFaultyCall&) = delete;

    // How often the library has made the call.
    int GetCount() const { return m_nCount; }

    // All calls of the library, of whatever kind, in order.
    const std::vector<ECall>& GetCalls() const { return m_calls; }

    // Counts a call and tells whether it is one of those that fail.
    bool Strikes(ECall call);

    const SFault& GetFault() const { return m_fault; }

private:
    SFault m_fault;
    int m_nCount = 0;
    std::vector<ECall> m_calls;
};

// What the library is told about a file system as long as it lives. One at a time. One thread.
class CFileSystemAnswer {
public:
    explicit CFileSystemAnswer(const struct statfs64& answer);
    ~CFileSystemAnswer();

    CFileSystemAnswer(const CFileSystemAnswer&) = delete;
    CFileSystemAnswer& operator=(const CFileSystemAnswer&) = delete;
};
