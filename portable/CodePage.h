// Conversion between multibyte text and 16-bit wide text by code page, under its Windows names.
// Every call opens and closes its own converters; the locale charset is the process locale's. [any thread]
//
// Code pages: 65000 (UTF-7), 65001 (UTF-8); any other value means the charset of the locale and, where that fails, the
// first charset of a fixed list that accepts the whole text. That road is also taken where 65000 and 65001 fail.
// Flags and default characters are accepted and ignored. Wide text is cut to 16 bits per character, and surrogate
// pairs are not combined. A null source is the empty text. Results are 0 when no charset accepts the text.
#pragma once

#include "portable/Export.h"

// Converts `cbSrc` bytes, or up to the terminator when `cbSrc` is -1. Returns the units needed for the text up to its
// first zero, terminator included, even when fewer were copied.
// Copies at most `cchDst` units and then a terminator: `pDst` holds `cchDst` + 1 units. A null `pDst` or a `cchDst`
// below 1 only measures. On failure `pDst` stays as it was.
KELO_EXPORT int MultiByteToWideChar(unsigned int nCodePage, unsigned int nFlags, const char* pszSrc, int cbSrc,
                                    unsigned short* pDst, int cchDst);

// Converts `cchSrc` units, or up to the terminator when `cchSrc` is -1; never past a terminator. Returns the bytes
// needed, terminator included, even when fewer were copied.
// Copies at most `cbDst` - 1 bytes and zeroes the rest of the `cbDst` bytes at `pszDst`. A null `pszDst` or a `cbDst`
// below 1 only measures. On failure the destination is empty.
// Code page 65000 yields UTF-8.
KELO_EXPORT int WideCharToMultiByte(unsigned int nCodePage, unsigned int nFlags, const unsigned short* pSrc, int cchSrc,
                                    char* pszDst, int cbDst, const char* pszDefaultChar, int* pbUsedDefaultChar);

// 0: no multibyte code page is active.
KELO_EXPORT unsigned int _getmbcp();
