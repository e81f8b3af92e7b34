// Output that waits to be handed out.
#pragma once

#include <cstddef>
#include <cstring>
#include <vector>

// Bytes in the order of their arrival. Allocates only while its peak grows. One object belongs to one thread.
class CByteQueue {
public:
    // Bytes that wait.
    std::size_t Size() const { return m_nEnd - m_nBegin; }

    // Room for `bytes` more at the end; they count once they are committed.
    unsigned char* Reserve(std::size_t bytes) {
        if (m_nEnd + bytes > m_storage.size()) MakeRoom(bytes);
        return m_storage.data() + m_nEnd;
    }
    void Commit(std::size_t bytes) { m_nEnd += bytes; }

    // Removes `bytes` from the front; they stay readable until the next Reserve.
    unsigned char* Take(std::size_t bytes) {
        unsigned char* const taken = m_storage.data() + m_nBegin;
        m_nBegin += bytes;
        return taken;
    }

    // Drops what waits; the storage stays.
    void Clear() { m_nBegin = m_nEnd = 0; }

private:
    // At least half of the storage is free afterwards, so that each byte is moved a bounded number of times.
    void MakeRoom(std::size_t bytes) {
        const std::size_t needed = 2 * (Size() + bytes);
        if (m_nBegin != 0) {
            std::memmove(m_storage.data(), m_storage.data() + m_nBegin, Size());
            m_nEnd = Size();
            m_nBegin = 0;
        }
        if (needed > m_storage.size()) m_storage.resize(needed);
    }

    std::vector<unsigned char> m_storage;
    std::size_t m_nBegin = 0;
    std::size_t m_nEnd = 0;
};
