// A descriptor that closes itself.
#pragma once

#include <unistd.h>

// Owns an open descriptor, or none when it holds -1. An automatic variable of one thread.
class CFileDescriptor final {
public:
    explicit CFileDescriptor(int descriptor) : m_nDescriptor(descriptor) {}
    ~CFileDescriptor() {
        if (IsOpen()) close(m_nDescriptor);
    }

    CFileDescriptor(const CFileDescriptor&) = delete;
    CFileDescriptor& operator=(const CFileDescriptor&) = delete;

    bool IsOpen() const { return m_nDescriptor != -1; }
    int Get() const { return m_nDescriptor; }

private:
    int m_nDescriptor;
};
