// WAV files that outgrow 32 bits: RF64 (EBU Tech 3306).
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>

// Leaves room in the header of a WAV file that is about to be written for what a longer file needs there.
void ReserveLongSizes(SNDFILE* file);

struct SWavSizes {
    std::uint64_t m_nFile;  // bytes
    std::uint64_t m_nData;  // bytes of samples
    std::uint64_t m_nFrames;

    bool NeedLongHeader() const;
};

// An RF64 header for the same file and of the same size. `header` is everything before the first sample, with the room
// for it; throws when it is not.
std::string LongHeader(const std::string& header, const SWavSizes& sizes);
