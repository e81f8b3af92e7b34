// Copying, appending and splitting text in bounded buffers, under their Windows runtime names.
// No shared state but errno and the context of strtok_s, which the caller owns. [any thread]
//
// Results: 0 success, 22 bad argument, 34 destination too small, STRUNCATE cut on request. Sizes count elements and
// include the terminator. A destination that was given and is too small is left empty.
#pragma once

#include <stddef.h>

#include "portable/Export.h"
#include "portable/Truncate.h"

// Copies `src` with its terminator. Every failure is in errno too.
KELO_EXPORT int strcpy_s(char* dst, size_t size, const char* src);
KELO_EXPORT int wcscpy_s(unsigned short* dst, size_t size, const unsigned short* src);

// Copies at most `count` elements and a terminator; `count` _TRUNCATE copies what fits and returns STRUNCATE when that
// is not all. `dst` null, `size` 0 and `count` 0 together are accepted. Results 22 and 34 are in errno too.
KELO_EXPORT int strncpy_s(char* dst, size_t size, const char* src, size_t count);
KELO_EXPORT int wcsncpy_s(unsigned short* dst, size_t size, const unsigned short* src, size_t count);

// Appends `src`. 22 also, with `dst` emptied, when `dst` has no terminator within `size`. Leaves errno alone.
KELO_EXPORT int strcat_s(char* dst, size_t size, const char* src);

// Appends at most `count` characters and a terminator; `count` _TRUNCATE as for strncpy_s. 22 also, with `dst` emptied,
// when `dst` has no terminator within `size`. In errno too: 34, and the 22 of a null `dst` or a `size` of 0.
KELO_EXPORT int strncat_s(char* dst, size_t size, const char* src, size_t count);

// Copies `count` bytes (wmemcpy_s: 16-bit units). A `count` of 0 does nothing and succeeds; a null `src` or a `count`
// above `size` zeroes the whole destination. Result 34 is in errno too.
KELO_EXPORT int memcpy_s(void* dst, size_t size, const void* src, size_t count);
KELO_EXPORT int wmemcpy_s(unsigned short* dst, size_t size, const unsigned short* src, size_t count);

// The next token of `str`, or of `*ctx` when `str` is null; null when there is none. The delimiter after the token is
// overwritten with a terminator and `*ctx` moves behind it. `delim` holds 7-bit characters.
// Null with errno 22: `delim` or `ctx` null, or `str` and `*ctx` both null.
KELO_EXPORT char* strtok_s(char* str, const char* delim, char** ctx);
