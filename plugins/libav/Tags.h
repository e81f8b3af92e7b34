// Descriptive tags of a media file.
#pragma once

#include "plugins/libav/LibavObjects.h"
#include "sdk/Sound.h"

// The file's own tags, else those of its sound track.
STags TagsOf(const AVFormatContext& context, const AVStream& stream);
