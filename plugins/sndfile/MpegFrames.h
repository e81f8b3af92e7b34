// The frames of an MPEG audio file, counted by their headers.
#pragma once

#include <cstdint>
#include <optional>

#include "plugins/shared/FileBytes.h"
#include "plugins/sndfile/MpegHeader.h"

// Where the first frame lies.
struct SMpegStart {
    std::uint64_t m_nAt;
    CMpegHeader m_header;
};

struct SMpegCount {
    std::uint64_t m_nFrames = 0;  // whole ones
    std::uint64_t m_nEnd = 0;     // behind the last whole one
    bool m_bEndsInFrame = false;  // the file ends inside one more
};

// The first frame behind ID3v2 tags; none when the file is not MPEG audio or is in free format. The codec knows MPEG
// audio by what looks like a frame right behind the tags, and so does this: other bytes there are those of another
// format, whatever follows.
std::optional<SMpegStart> FindMpegStart(CFileBytes& file);

// End of the audio: before an ID3v1 tag, else the end of the file.
std::uint64_t MpegAudioEnd(CFileBytes& file);

// Counts from the frame at `from` to the end, over what lies between frames.
SMpegCount CountMpegFrames(CFileBytes& file, const SMpegStart& start, std::uint64_t from);
