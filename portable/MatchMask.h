// Wildcard masks of directory searches.
#pragma once

#include "portable/Export.h"

// 1 when `mask` matches a prefix of `name`, else 0; a null argument matches nothing. [any thread]
// '*' stands for one or more characters, '?' for exactly one, any other character for itself. A `bCaseSensitive` of 0
// compares through toupper. A mask longer than the name never matches.
KELO_EXPORT int MatchMask(const char* mask, const char* name, int bCaseSensitive);
