// A file as the codec is to see it: some of its bytes replaced.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>

// The file's bytes [m_nAt, m_nAt + m_nDropped) give way to `m_strBytes`.
struct SSplice {
    std::uint64_t m_nAt = 0;
    std::uint64_t m_nDropped = 0;
    std::string m_strBytes;
};

// libsndfile's virtual I/O over an open file; the file itself stays as it is. Borrows the descriptor.
// [stream-thread]
class CSplicedFile {
public:
    CSplicedFile(int descriptor, SSplice splice);

    CSplicedFile(const CSplicedFile&) = delete;
    CSplicedFile& operator=(const CSplicedFile&) = delete;

    // A reading handle at the first byte, which lives no longer than this object.
    SNDFILE* OpenHandle(SF_INFO& info);

private:
    static sf_count_t Length(void* self);
    static sf_count_t Seek(sf_count_t offset, int whence, void* self);
    static sf_count_t Read(void* buffer, sf_count_t count, void* self);
    static sf_count_t Tell(void* self);

    sf_count_t ReadPiece(char* buffer, sf_count_t count);

    int m_nDescriptor;
    SSplice m_splice;
    sf_count_t m_nLength;
    sf_count_t m_nPosition = 0;
};
