// Calendar time as text and fields, under their Windows runtime names.
// The local time zone of the process; reentrant. [any thread]
#pragma once

#include <stddef.h>
#include <time.h>

#include "portable/Export.h"

// Writes the 24 characters and newline of ctime for `*t` seconds since 1970-01-01 UTC. The result is the errno value
// after the conversion: callers clear errno before. 22: `buf` null, `size` below 26, `t` null or `*t` negative.
// On failure a given buffer is empty.
KELO_EXPORT int ctime_s(char* buf, size_t size, const time_t* t);

// Breaks `*t` seconds since 1970-01-01 UTC down into `*out`; 0.
// 22: `out` null, `t` null or `*t` negative; then every field of a given `*out` is -1.
KELO_EXPORT int localtime_s(struct tm* out, const time_t* t);
