// A sound that makes a program ask for everything.
#pragma once

#include <string>

#include "tests/plugins/sndfile/AudioFiles.h"

// The bytes of a WAV file of half a second, 48000 Hz, 16 bits, stereo, with a title and an index point.
inline std::string MarkedSound() {
    const std::string point =
        LittleEndian(1, 4) + LittleEndian(0, 4) + "data" + LittleEndian(0, 8) + LittleEndian(1000, 4);
    const std::string samples(std::size_t{4} * 24000, '\1');
    return WavFile({48000, 16, 2}, samples, 1,
                   Chunk("cue ", LittleEndian(1, 4) + point) + Chunk("LIST", "INFO" + Chunk("INAM", "Marked")));
}
