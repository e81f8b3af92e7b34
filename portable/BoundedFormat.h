// printf and scanf into bounded buffers, under their Windows runtime names.
// No shared state but errno; a destination whose text does not fit is never left unterminated. [any thread]
#pragma once

#include <stdarg.h>
#include <stddef.h>

#include "portable/Export.h"
#include "portable/Truncate.h"

// Formats into the `size` bytes at `dst`. Returns the characters written.
// -1 with errno 22: `fmt` or `dst` null, or `size` 0. -1 with errno 34: the text does not fit; `dst` is emptied.
// -1 after a formatting error; `dst` is emptied.
KELO_EXPORT int sprintf_s(char* dst, size_t size, const char* fmt, ...) __attribute__((format(printf, 3, 4)));
KELO_EXPORT int _vsprintf_s(char* dst, size_t size, const char* fmt, va_list args)
    __attribute__((format(printf, 3, 0)));

// Formats at most `count` characters and a terminator into the `size` bytes at `dst`. Returns the characters written.
// `count` below `size`: longer text is cut at `count` characters, -1.
// `count` _TRUNCATE: longer text is cut at `size` - 1 characters, -1. errno never becomes 34 through a cut.
// Any other `count`: text that does not fit empties `dst`, -1 with errno 34.
// `dst` null, `size` 0 and `count` 0 together are accepted: 0. Otherwise `fmt` or `dst` null or `size` 0 is -1 with
// errno 22. A formatting error empties `dst`, -1.
KELO_EXPORT int _snprintf_s(char* dst, size_t size, size_t count, const char* fmt, ...)
    __attribute__((format(printf, 4, 5)));
KELO_EXPORT int _vsnprintf_s(char* dst, size_t size, size_t count, const char* fmt, va_list args)
    __attribute__((format(printf, 4, 0)));

// sscanf. Takes no buffer sizes for %s, %c and %[; callers pass none.
// -1 with errno 22: `s` or `fmt` null.
KELO_EXPORT int sscanf_s(const char* s, const char* fmt, ...) __attribute__((format(scanf, 2, 3)));
