// Integers as text, under their Windows runtime names.
// No shared state but errno. [any thread]
#pragma once

#include <stddef.h>

#include "portable/Export.h"

// Writes the digits of `value` in `base` (2 to 36), lower-case, and a terminator to `dst`, which must hold 33 bytes.
// Returns `dst`. The value 0 gives the empty text; callers pass no negative values.
KELO_EXPORT char* _itoa(int value, char* dst, int base);

// _itoa into `size` bytes. Returns 0; on failure the result is in errno too and a given `dst` is empty:
// 22 when `dst` is null, `size` is 0 or `base` is outside 2 to 36; 34 when the digits do not fit, and always when
// `size` is 1, or 2 for a negative value in base 10.
KELO_EXPORT int _itoa_s(int value, char* dst, size_t size, int base);
