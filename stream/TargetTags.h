// Descriptive tags of what is about to be written.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"

// The fields of IInfoReader, in its order.
enum ETag : unsigned int {
    TAG_TITLE = 0,
    TAG_ARTIST = 1,
    TAG_ALBUM = 2,
    TAG_YEAR = 3,
    TAG_GENRE = 4,
};

// Implemented by the targets of encoder components (asked of IAudioTarget); called by hosts before the target's factory
// makes the encoder stream. [stream-thread]
class ITargetTags : public IUnknown {
public:
    // Whether a file of the target's format has a place for `tag`.
    virtual bool HasTag(ETag tag) = 0;

    // Copies `text`, zero-terminated UTF-8; an empty one writes no such tag. False: the format has no place for it or
    // the text cannot be written; the reason goes out through `status` (the caller releases it).
    virtual bool SetTag(ETag tag, const char* text, IStatus** status) = 0;

protected:
    ~ITargetTags() = default;
};
