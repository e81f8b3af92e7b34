// One open sound: what the author of a decoder writes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sdk/Guard.h"
#include "stream/TargetTags.h"
#include "stream/WavFormat.h"

// UTF-8; empty where the file has no such tag.
struct STags {
    std::string m_strTitle;
    std::string m_strArtist;
    std::string m_strAlbum;
    std::string m_strYear;
    std::string m_strGenre;

    // The field of one of ETag's values.
    std::string& operator[](ETag tag) {
        std::string* const fields[] = {&m_strTitle, &m_strArtist, &m_strAlbum, &m_strYear, &m_strGenre};
        return *fields[tag];
    }
};

// Positions and lengths are sample frames. Every operation may throw: what() is the reason that a person reads, without
// the file's name. One thread at a time. [stream-thread]
class CSound {
public:
    CSound() = default;
    virtual ~CSound() = default;

    CSound(const CSound&) = delete;
    CSound& operator=(const CSound&) = delete;

    // The format of the bytes that Read delivers, constant for the sound's life.
    virtual SWavFormat GetFormat() const = 0;

    // kFloatSamples only for a sound that was opened with AF_ADVANCED_FORMATS.
    virtual std::int32_t GetFormatQualifier() const { return kIntegerSamples; }

    // 0 when unknown. May become exact while reading.
    virtual std::uint64_t GetLength() const { return 0; }

    // Stores at most `frames` (at least 1) frames and returns how many; 0 is the end. Begins at the first frame.
    virtual std::int64_t Read(unsigned char* buffer, std::int64_t frames) = 0;

    // Whether Seek reaches every frame.
    virtual bool IsSeekable() const { return false; }

    // `frame` is at most the length where that is known. Throws with the position unchanged.
    virtual void Seek(std::uint64_t /*frame*/) { Refuse("cannot seek"); }

    // To the first frame, for a stream that is started again.
    virtual void Rewind() { Seek(0); }

    // Asked once, after opening.
    virtual STags GetTags() const { return {}; }

    // Track or cue marks in ascending order, each below the length where that is known. Asked once, after opening.
    virtual std::vector<std::uint64_t> GetIndexPoints() const { return {}; }
};
