// Where a file ends by its own account.
#pragma once

#include "plugins/libav/InputFile.h"

// Whether the outermost parts of a Matroska, RIFF or MP4 file go on beyond its end. Other files do not tell.
bool IsCutShort(const CInputFile& file);
