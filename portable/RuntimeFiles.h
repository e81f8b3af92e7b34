// Opening files and reading lines, under their Windows runtime names.
// No shared state but errno and the standard input. [any thread]
#pragma once

#include <stddef.h>
#include <stdio.h>

#include "portable/Export.h"

// Opens `path` into `*pf`, which the caller closes. 0, or the errno value of a failed open with `*pf` null.
// 22, also in errno: a null argument or an empty `mode`.
KELO_EXPORT int fopen_s(FILE** pf, const char* path, const char* mode);

// Opens `path` into `*pfh`, which the caller closes; -1 there is failure. `pmode` may hold the owner's read and write
// bits (0x180) only; `shflag` is ignored. 22: `pfh` or `path` null or another bit in `pmode`.
// Otherwise the result is whatever errno holds after the open, also after success: test `*pfh`.
KELO_EXPORT int sopen_s(int* pfh, const char* path, int oflag, int shflag, int pmode);

// Reads one line of the standard input without its newline. Returns `buf`, or null at the end of input.
// A line that does not fit is cut; the next call goes on behind the cut.
// Null with errno 22: `buf` null or `size` 0.
KELO_EXPORT char* gets_s(char* buf, size_t size);
