// Where the chapters of a media file begin.
#pragma once

#include <cstdint>
#include <vector>

#include "plugins/libav/LibavObjects.h"

// Positions in sample frames, ascending; empty for a file without chapters. `begin` is the time of the sound's first
// frame in `context`, in frames.
std::vector<std::uint64_t> ChapterStartsOf(const AVFormatContext& context, int sampleRate, std::int64_t begin);
