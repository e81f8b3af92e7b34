// Which PCM a sound file comes out as, and which files the installed libsndfile reads.
#pragma once

#include <sndfile.h>

#include <string>
#include <vector>

#include "com/FeatureSupport.h"
#include "stream/WavFormat.h"

// How the samples of a file are fetched.
enum ESampleRoad {
    SR_INTEGER,      // at the decoder's own width
    SR_FLOAT_TO_16,  // rounded to 16 bits
    SR_FLOAT
};

struct SSourceFormat {
    SWavFormat m_format;
    ESampleRoad m_eRoad;
};

// Float samples, and those of Vorbis, Opus and MPEG audio, stay float at AF_ADVANCED_FORMATS alone.
SSourceFormat SourceFormatOf(const SF_INFO& info, EAudioFeature level);

// Whether the samples lie in the file as a host takes them: integers, little-endian, 8 bits unsigned.
bool IsPackedPcm(const SF_INFO& info);

// Extensions without the dot of the formats that the installed libsndfile knows.
std::vector<std::string> ReadableExtensions();
