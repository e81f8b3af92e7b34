// The file formats that are written and what each of them takes.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>
#include <vector>

#include "stream/TargetTags.h"
#include "stream/WavFormat.h"

// How a format's samples are coded.
enum EOutputCoding { OC_PCM, OC_FLAC, OC_VORBIS, OC_OPUS, OC_MP3 };

// One file format.
struct SOutputFormat {
    const char* m_strExtension;
    const char* m_strName;
    int m_nFormat;  // libsndfile's container, with the coding where that does not depend on the width
    EOutputCoding m_eCoding;
    int m_nLeastBits;
    int m_nMostBits;
    unsigned int m_nTags;  // bits 1 << ETag

    // Bytes of samples that fit; 0 when there is no limit that a file system would allow.
    std::uint64_t m_nMostBytes;

    bool Has(ETag tag) const { return (m_nTags >> tag & 1) != 0; }
};

// Whether integers lie in such a file as a host has them: little-endian, 8 bits unsigned. `container` is libsndfile's.
bool HoldsPackedPcm(int container);

// Extensions without the dot of the formats that the installed libsndfile writes.
std::vector<std::string> WritableExtensions();

// `extension` as WritableExtensions gives it.
const SOutputFormat& OutputFormatOf(const std::string& extension);

// What a file of `output` takes when samples of `wanted` are at hand: the nearest width, the next sample rate and the
// most channels that it has.
SWavFormat AcceptedFormat(const SOutputFormat& output, const SWavFormat& wanted);

// The request to libsndfile for a file of samples of `accepted`.
SF_INFO OutputInfo(const SOutputFormat& output, const SWavFormat& accepted, bool floatSamples);

// Throws the reason why libsndfile would not write such a file.
void RequireWritable(const SOutputFormat& output, const SF_INFO& info);
