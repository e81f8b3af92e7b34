// Which PCM a sound file comes out as, and which files the installed libsndfile reads.
#pragma once

#include <sndfile.h>

#include <vector>

#include "stream/WavFormat.h"

// How the samples of a file are fetched.
enum ESampleRoad {
    SR_INTEGER,     // lossless, at the file's own width
    SR_FLOAT_TO_16  // float and lossy sources, rounded to 16 bits
};

struct SSourceFormat {
    SWavFormat m_format;
    ESampleRoad m_eRoad;
};

SSourceFormat SourceFormatOf(const SF_INFO& info);

// Extensions without the dot of the formats that the installed libsndfile knows.
std::vector<const char*> ReadableExtensions();
