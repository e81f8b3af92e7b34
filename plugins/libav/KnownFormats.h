// The file formats that this plug-in reads.
#pragma once

#include <string>
#include <vector>

struct AVInputFormat;

// Where the length of the sound is told.
enum ELengthSource {
    LS_END,     // nowhere: only the end shows it
    LS_FRAMES,  // the header counts the frames: a sound that ends before is cut short
    LS_EDITS,   // the header's edits: what the codec delivers beyond is padding
    LS_TIME,    // the header or the last page has the time of the end
};

// What a jump in a file of a format leaves of the timestamps.
enum ETimesBehindJump {
    TJ_TRUE,      // they are the file's own
    TJ_COUNTED,   // libavformat counts what the packets hold, or the file's index does
    TJ_BY_BYTES,  // worked out from bytes per second, which is right for PCM alone
    TJ_VAGUE,     // they need not be those of a linear read
};

enum EFormatTrait {
    FT_NONE,
    FT_BROADCAST,      // a recording may begin and end in the middle of everything
    FT_PICTURE_INDEX,  // the index is that of the pictures, if there are any
};

struct SKnownFormat {
    const char* m_strName;  // libavformat's, the first of several
    ELengthSource m_eLength;
    ETimesBehindJump m_eTimes;
    EFormatTrait m_eTrait = FT_NONE;

    bool IsBroadcast() const { return m_eTrait == FT_BROADCAST; }

    // Whether a file has timestamps of its own: they may have gaps, and go back where another file was joined on.
    bool HasOwnTimes() const { return m_eTimes == TJ_TRUE || m_eLength == LS_TIME; }
};

// Null for a format that is not read here: without sound, or one that sends the reader to other files.
const SKnownFormat* FindKnownFormat(const AVInputFormat& format);

// File name extensions without the dot.
std::vector<std::string> KnownExtensions();
