// Descriptive tags of a sound file.
#pragma once

#include <sndfile.h>

#include "sdk/Sound.h"

// The year is the date as the file has it.
STags TagsOf(SNDFILE* file);

// In a file that is being written and has no frame yet.
void SetTags(SNDFILE* file, STags tags);
