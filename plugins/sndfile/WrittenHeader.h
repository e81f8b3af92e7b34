// Headers of written files where libsndfile's own is not right.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>

struct SWrittenSizes {
    std::uint64_t m_nFile;  // bytes
    std::uint64_t m_nData;  // bytes of samples
    std::uint64_t m_nFrames;
};

// Leaves room in the header of a WAV file that is about to be written for what RF64 (EBU Tech 3306) needs there.
void ReserveLongSizes(SNDFILE* file);

// A header of the same size for the complete file, empty where it has the right one. `header` is everything before the
// first sample. WAV becomes RF64 where its sizes outgrow 32 bits; throws when there is no room for that.
std::string CorrectedWavHeader(const std::string& header, const SWrittenSizes& sizes);

// libsndfile 1.2.0 counts the byte that pads odd samples among them.
std::string CorrectedAiffHeader(const std::string& header, const SWrittenSizes& sizes);
