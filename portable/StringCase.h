// Reversing and case conversion in place, under their Windows runtime names.
// Bytes are converted one by one by tolower and toupper, that is by the process locale. [any thread]
#pragma once

#include <stddef.h>

#include "portable/Export.h"

// These change the text `s`, which must not be null, and return it.
KELO_EXPORT char* _strrev(char* s);
KELO_EXPORT char* _strlwr(char* s);
KELO_EXPORT char* _strupr(char* s);

// These return 0, or 22 (also in errno) when `s` is null or has no terminator within `size` bytes; a text without
// terminator is emptied.
KELO_EXPORT int _strlwr_s(char* s, size_t size);
KELO_EXPORT int _strupr_s(char* s, size_t size);
