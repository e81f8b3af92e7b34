// What the libraries report about a file.
#include "plugins/libav/Damage.h"

#include <new>

#include "plugins/libav/LibavObjects.h"

// Some codecs have a bare -1 or a number of their own for bad data.
std::string LibavReason(int error) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    const bool known = error != -1 && av_strerror(error, text, sizeof text) >= 0;
    return known ? text : LibavReason(AVERROR_INVALIDDATA);
}

void ThrowDamage(int error) {
    if (error == AVERROR(ENOMEM)) throw std::bad_alloc();
    throw CDamage(LibavReason(error));
}
