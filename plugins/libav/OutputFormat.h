// Which PCM a codec's blocks come out as.
#pragma once

#include <cstdint>

#include "com/FeatureSupport.h"
#include "plugins/libav/LibavObjects.h"
#include "stream/WavFormat.h"

// Integer samples keep their width, rounded up to whole bytes. Float samples come out as 16 bits, or as they are at
// AF_ADVANCED_FORMATS. `codec` has delivered `block`. Throws for samples that are no PCM.
SHeldWavFormat OutputFormatOf(const AVCodecContext& codec, const AVFrame& block, EAudioFeature level);
