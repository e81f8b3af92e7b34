// How many frames a sound file declares where its header counts frames and not bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "plugins/shared/FileBytes.h"
#include "plugins/sndfile/SplicedFile.h"

struct SDeclaredFrames {
    std::uint64_t m_nFrames = 0;      // 0 where the header does not know
    std::optional<SSplice> m_splice;  // what to show to the codec so that it delivers those that are there
};

// Of a file of the format `formatName` (as CSoundFile::FormatName tells it).
SDeclaredFrames FindDeclaredFrames(CFileBytes& file, const std::string& formatName);
