// Copying, appending and splitting text in bounded buffers, under their Windows runtime names.
#include "portable/BoundedStrings.h"

#include <errno.h>
#include <string.h>

#include <algorithm>
#include <bitset>

namespace {

int Refuse(int error) { return errno = error; }

template <typename TChar>
int Empty(TChar* dst, int error) {
    dst[0] = TChar();
    return error;
}

// Copies at most `count` elements and a terminator; false when `size` ran out before the terminator was placed.
template <typename TChar>
bool CopyWithin(TChar* dst, size_t size, const TChar* src, size_t count) {
    for (size_t i = 0; i < size; ++i) {
        if (i == count || src[i] == TChar()) {
            dst[i] = TChar();
            return true;
        }
        dst[i] = src[i];
    }
    return false;
}

template <typename TChar>
int CopyText(TChar* dst, size_t size, const TChar* src) {
    if (dst == nullptr || size == 0) return Refuse(EINVAL);
    if (src == nullptr) return Empty(dst, Refuse(EINVAL));
    return CopyWithin(dst, size, src, size) ? 0 : Empty(dst, Refuse(ERANGE));
}

template <typename TChar>
int CopyCountedText(TChar* dst, size_t size, const TChar* src, size_t count) {
    if (dst == nullptr && size == 0 && count == 0) return 0;
    if (dst == nullptr || size == 0) return Refuse(EINVAL);
    if (count == 0) return Empty(dst, 0);
    if (src == nullptr) return Empty(dst, Refuse(EINVAL));
    if (CopyWithin(dst, size, src, count)) return 0;
    if (count != _TRUNCATE) return Empty(dst, Refuse(ERANGE));
    dst[size - 1] = TChar();
    return STRUNCATE;
}

// The bytes that end a token; the terminator is always one of them.
using CDelimiterSet = std::bitset<256>;

CDelimiterSet DelimiterSet(const char* delim) {
    CDelimiterSet set;
    set.set(0);
    for (; *delim != '\0'; ++delim) set.set(static_cast<unsigned char>(*delim));
    return set;
}

}  // namespace

int strcpy_s(char* dst, size_t size, const char* src) { return CopyText(dst, size, src); }

int wcscpy_s(unsigned short* dst, size_t size, const unsigned short* src) { return CopyText(dst, size, src); }

int strncpy_s(char* dst, size_t size, const char* src, size_t count) { return CopyCountedText(dst, size, src, count); }

int wcsncpy_s(unsigned short* dst, size_t size, const unsigned short* src, size_t count) {
    return CopyCountedText(dst, size, src, count);
}

int strcat_s(char* dst, size_t size, const char* src) {
    if (dst == nullptr || size == 0) return EINVAL;
    if (src == nullptr) return Empty(dst, EINVAL);
    const size_t length = strnlen(dst, size);
    if (length == size) return Empty(dst, EINVAL);
    return CopyWithin(dst + length, size - length, src, _TRUNCATE) ? 0 : Empty(dst, ERANGE);
}

int strncat_s(char* dst, size_t size, const char* src, size_t count) {
    if (dst == nullptr && size == 0 && count == 0) return 0;
    if (dst == nullptr || size == 0) return Refuse(EINVAL);
    if (count != 0 && src == nullptr) return Empty(dst, EINVAL);
    const size_t length = strnlen(dst, size);
    if (length == size) return Empty(dst, EINVAL);
    if (CopyWithin(dst + length, size - length, src, count)) return 0;
    if (count != _TRUNCATE) return Empty(dst, Refuse(ERANGE));
    dst[size - 1] = '\0';
    return STRUNCATE;
}

int memcpy_s(void* dst, size_t size, const void* src, size_t count) {
    if (count == 0) return 0;
    if (dst == nullptr) return EINVAL;
    if (src == nullptr) {
        memset(dst, 0, size);
        return EINVAL;
    }
    if (count > size) {
        memset(dst, 0, size);
        return Refuse(ERANGE);
    }
    memcpy(dst, src, count);
    return 0;
}

int wmemcpy_s(unsigned short* dst, size_t size, const unsigned short* src, size_t count) {
    return memcpy_s(dst, size * sizeof *dst, src, count * sizeof *src);
}

char* strtok_s(char* str, const char* delim, char** ctx) {
    if (delim == nullptr || ctx == nullptr || (str == nullptr && *ctx == nullptr)) {
        errno = EINVAL;
        return nullptr;
    }
    const CDelimiterSet delimiters = DelimiterSet(delim);
    const auto isDelimiter = [&delimiters](char byte) { return delimiters[static_cast<unsigned char>(byte)]; };

    char* token = str != nullptr ? str : *ctx;
    while (*token != '\0' && isDelimiter(*token)) ++token;
    *ctx = token;
    if (*token == '\0') return nullptr;

    char* end = token;
    while (!isDelimiter(*end)) ++end;
    *ctx = end;
    if (*end != '\0') *(*ctx)++ = '\0';
    return token;
}
