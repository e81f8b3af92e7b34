// The file formats that are written and what each of them takes.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <string>

#include "stream/WavFormat.h"

// One file format.
struct SOutputFormat {
    const char* m_strExtension;
    const char* m_strName;
    int m_nContainer;
    int m_nLeastBits;
    int m_nMostBits;

    // Bytes of samples that fit; 0 when there is no limit that a file system would allow.
    std::uint64_t m_nMostBytes;
};

int OutputFormatCount();

// Null when there is no format `n`.
const SOutputFormat* OutputFormatAt(int n);

// Compares without regard to case; null for an extension that no format has.
const SOutputFormat* FindOutputFormat(const char* extension);

// What a file of `output` takes when samples of `wanted` are at hand: the nearest width that loses nothing, else the
// greatest width, at the same rate and channels.
SWavFormat AcceptedFormat(const SOutputFormat& output, const SWavFormat& wanted);

// The request to libsndfile for a file of samples of `accepted`.
SF_INFO OutputInfo(const SOutputFormat& output, const SWavFormat& accepted);

// Why libsndfile would not write such a file; empty when it would.
std::string ReasonAgainst(const SF_INFO& info);
