// Bytes of an open file by offset, for a look at its headers.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

// Reads large blocks, so that steps from header to header are cheap. Borrows the descriptor and leaves its position
// alone. [stream-thread]
class CFileBytes {
public:
    explicit CFileBytes(int descriptor);

    std::uint64_t Size() const { return m_nSize; }

    // `count` bytes at `offset`, fewer where the file ends; valid until the next call.
    std::string_view At(std::uint64_t offset, std::size_t count);

private:
    void Fill(std::uint64_t offset, std::size_t count);

    int m_nDescriptor;
    std::uint64_t m_nSize;
    std::vector<char> m_vBlock;
    std::uint64_t m_nBlockStart = 0;
    std::size_t m_nBlockBytes = 0;
};

// Reads from `offset` on until `count` bytes are there or the file ends; the bytes read, or -1 before the first one.
ssize_t ReadFully(int descriptor, void* buffer, std::size_t count, std::uint64_t offset);

// The number that the bytes are, lowest or highest byte first.
std::uint64_t FromLittleEndian(std::string_view bytes);
std::uint64_t FromBigEndian(std::string_view bytes);
