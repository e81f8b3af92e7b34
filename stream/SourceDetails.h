// What a source tells about itself: tags, index points, formats, name; and seeking.
#pragma once

#include <cstdint>

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

// Implemented by decoder streams with tags and, over those, by CSrcConvAggregator; called by hosts.
// Texts are zero-terminated UTF-8 owned by the object, valid until the next call or the stream's end. [stream-thread]
class IInfoReader : public IUnknown {
public:
    // Empty or null where the source has no such tag; the year is the date as the source has it.
    virtual const char* GetTitle() = 0;
    virtual const char* GetArtist() = 0;
    virtual const char* GetAlbum() = 0;
    virtual const char* GetYear() = 0;
    virtual const char* GetGenre() = 0;

protected:
    ~IInfoReader() = default;
};

// "There is no such index point."
constexpr std::uint64_t kNoIndexPoint = ~static_cast<std::uint64_t>(0);

// Index points such as track or cue marks.
// Implemented by decoder streams with an index and by CSrcConvAggregator; called by hosts. [stream-thread]
class IIndexArray : public IUnknown {
public:
    // Index points that GetIndex knows.
    virtual int GetIndexNumber() = 0;

    // Position of index point `n` in sample frames, kNoIndexPoint when there is none.
    virtual std::uint64_t GetIndex(int n) = 0;

protected:
    ~IIndexArray() = default;
};

// Implemented by seekable decoder streams and, over those, by CSrcConvAggregator; called by hosts. [stream-thread]
class ISeekable : public IUnknown {
public:
    // Moves to `position` in sample frames. False: the position is unchanged; the reason goes out through `status`.
    virtual bool Seek(unsigned long position, IStatus** status) = 0;

protected:
    ~ISeekable() = default;
};

// Implemented by CSrcConvAggregator; called by hosts. [stream-thread]
class IRealFormat : public IUnknown {
public:
    // The format that the decoder itself produces, before any conversion.
    virtual SWavFormat GetRealFormat() = 0;

protected:
    ~IRealFormat() = default;
};

// Asked of a decoder's IAudioRawReader while advanced formats are enabled. [stream-thread]
class IAdvancedFormat : public IUnknown {
public:
    // The format of the bytes that RawRead delivers, with its qualifier.
    virtual SAdvancedWavFormat GetAdvancedFormat() = 0;

protected:
    ~IAdvancedFormat() = default;
};

// Implemented by decoder streams; asked by CSrcConvAggregator. [stream-thread]
class ISourceName : public IUnknown {
public:
    // Never called.
    virtual void ReservedFirst() = 0;

    // Path or URL of the source, owned by the stream.
    virtual const char* GetSourceName() = 0;

protected:
    ~ISourceName() = default;
};
