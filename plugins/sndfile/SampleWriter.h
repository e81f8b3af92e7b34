// Packed little-endian PCM into a sound file.
#pragma once

#include <sndfile.h>

#include <vector>

#include "stream/WavFormat.h"

// Writing allocates nothing. [stream-thread]
class CSampleWriter {
public:
    explicit CSampleWriter(const SWavFormat& format);

    // Frames that `file` took; fewer than `frames` when writing failed.
    sf_count_t Write(SNDFILE* file, const unsigned char* data, sf_count_t frames);

private:
    bool WritesDirectly(const unsigned char* data) const;

    SWavFormat m_format;
    sf_count_t m_nPieceFrames;
    std::vector<int> m_vPiece;
};
