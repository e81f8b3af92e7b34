// An open file of the system.
#pragma once

#include <unistd.h>

#include <cerrno>

// Owns a file descriptor; -1 is none. Belongs to one thread at a time.
class CFileDescriptor {
public:
    explicit CFileDescriptor(int descriptor = -1) : m_nDescriptor(descriptor) {}
    CFileDescriptor(CFileDescriptor&& other) noexcept : m_nDescriptor(other.Detach()) {}
    ~CFileDescriptor() { Close(); }

    CFileDescriptor(const CFileDescriptor&) = delete;
    CFileDescriptor& operator=(const CFileDescriptor&) = delete;

    int Get() const { return m_nDescriptor; }
    bool IsOpen() const { return m_nDescriptor >= 0; }
    bool IsSeekable() const { return ::lseek(m_nDescriptor, 0, SEEK_CUR) >= 0; }

    // 0, or the errno value that closing ended with; the descriptor is gone either way.
    int Close() {
        if (!IsOpen()) return 0;
        return ::close(Detach()) == 0 ? 0 : errno;
    }

private:
    int Detach() {
        const int descriptor = m_nDescriptor;
        m_nDescriptor = -1;
        return descriptor;
    }

    int m_nDescriptor;
};
