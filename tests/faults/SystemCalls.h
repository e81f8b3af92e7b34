// Faults of the system calls that the library makes.
#pragma once

#include <climits>
#include <cstddef>

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
    MakeTemporary,
    CurrentDirectory,
    RemoveFile,
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

    // Counts a call and tells whether it is one of those that fail.
    bool Strikes(ECall call);

    const SFault& GetFault() const { return m_fault; }

private:
    SFault m_fault;
    int m_nCount = 0;
};
