// Cue points of a sound file.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <vector>

// Positions in sample frames, ascending; empty for a file without cue points.
std::vector<std::uint64_t> CuePointsOf(SNDFILE* file);
