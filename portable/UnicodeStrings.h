// Measuring, copying, comparing and converting text of char, unsigned short (UTF-16 units) and wchar_t (32 bits).
// No shared state; the locale charset is the process locale's. [any thread]
//
// Counts are in elements; -1 means no limit, other negative counts are not allowed. A destination of a limited copy
// holds the limit + 1 elements: the terminator comes on top. Where `dst` is null, a new text is returned, which the
// caller frees with delete[]. Exactly the instances named at the end of this header exist.
#pragma once

#include "portable/Export.h"

// Elements before the terminator; 0 for null.
template <typename T>
unsigned long UnicodeStringLen(const T* text);

// Copies at most `max` elements, each by plain integer conversion: char to unsigned short extends the sign, wider to
// narrower keeps the low bits. Returns `dst` or the new text; null when `src` is null.
template <typename TSrc, typename TDst>
TDst* ConvertUnicodeGeneric(const TSrc* src, TDst* dst, int max);

// ConvertUnicodeGeneric, except from unsigned short to char: ConvertUnicodeToMultiByte, without regard to `max`, and
// ConvertUnicodeGeneric only where that fails.
template <typename TSrc, typename TDst>
TDst* ConvertUnicodeWithCodePage(unsigned int codePage, const TSrc* src, TDst* dst, int max);

// ConvertUnicodeWithCodePage for the charset of the locale.
template <typename TSrc, typename TDst>
TDst* ConvertUnicode(const TSrc* src, TDst* dst, int max);

// Converts to the code page's multibyte text (WideCharToMultiByte), without limit: `dst` has room for all of it.
// Elements of char are widened by their sign first. Returns `dst` or the new text; null when `src` is null or no
// charset accepts it.
template <typename T>
char* ConvertUnicodeToMultiByte(unsigned int codePage, const T* src, char* dst);

// Converts at most `max` bytes of multibyte text (MultiByteToWideChar) to at most `max` elements. Returns `dst` or the
// new text; null when `src` is null or no charset accepts it.
template <typename T>
T* ConvertUnicodeFromMultiByte(unsigned int codePage, const char* src, T* dst, int max);

// ConvertUnicode without change of type. Returns `dst` or the new text; null when `src` is null.
template <typename T>
T* UnicodeStrCpy(T* dst, const T* src, int max);

// Appends without limit; `dst` has room. Returns where the appended text begins; null when `src` is null.
template <typename T>
T* UnicodeStrCat(T* dst, const T* src);

// -1, 0 or 1 over at most `n` elements compared as signed values: bytes from 0x80 up sort before ASCII.
// Null sorts before every text and equals null; else an `n` of 0 or below (other than -1) compares equal.
template <typename T>
int UnicodeStringCmp(const T* a, const T* b, int n);

extern template KELO_EXPORT unsigned long UnicodeStringLen(const char*);
extern template KELO_EXPORT unsigned long UnicodeStringLen(const unsigned short*);
extern template KELO_EXPORT unsigned long UnicodeStringLen(const wchar_t*);

extern template KELO_EXPORT unsigned short* ConvertUnicodeGeneric(const char*, unsigned short*, int);
extern template KELO_EXPORT unsigned short* ConvertUnicodeGeneric(const unsigned short*, unsigned short*, int);
extern template KELO_EXPORT char* ConvertUnicodeGeneric(const char*, char*, int);
extern template KELO_EXPORT char* ConvertUnicodeGeneric(const unsigned short*, char*, int);
extern template KELO_EXPORT unsigned short* ConvertUnicodeGeneric(const wchar_t*, unsigned short*, int);
extern template KELO_EXPORT wchar_t* ConvertUnicodeGeneric(const unsigned short*, wchar_t*, int);

extern template KELO_EXPORT char* ConvertUnicodeWithCodePage(unsigned int, const char*, char*, int);
extern template KELO_EXPORT char* ConvertUnicodeWithCodePage(unsigned int, const unsigned short*, char*, int);
extern template KELO_EXPORT unsigned short* ConvertUnicodeWithCodePage(unsigned int, const wchar_t*, unsigned short*,
                                                                       int);
extern template KELO_EXPORT wchar_t* ConvertUnicodeWithCodePage(unsigned int, const unsigned short*, wchar_t*, int);

extern template KELO_EXPORT char* ConvertUnicode(const char*, char*, int);
extern template KELO_EXPORT char* ConvertUnicode(const unsigned short*, char*, int);
extern template KELO_EXPORT unsigned short* ConvertUnicode(const wchar_t*, unsigned short*, int);
extern template KELO_EXPORT wchar_t* ConvertUnicode(const unsigned short*, wchar_t*, int);

extern template KELO_EXPORT char* ConvertUnicodeToMultiByte(unsigned int, const char*, char*);
extern template KELO_EXPORT char* ConvertUnicodeToMultiByte(unsigned int, const unsigned short*, char*);
extern template KELO_EXPORT char* ConvertUnicodeToMultiByte(unsigned int, const wchar_t*, char*);

extern template KELO_EXPORT char* ConvertUnicodeFromMultiByte(unsigned int, const char*, char*, int);
extern template KELO_EXPORT unsigned short* ConvertUnicodeFromMultiByte(unsigned int, const char*, unsigned short*,
                                                                        int);
extern template KELO_EXPORT wchar_t* ConvertUnicodeFromMultiByte(unsigned int, const char*, wchar_t*, int);

extern template KELO_EXPORT char* UnicodeStrCpy(char*, const char*, int);
extern template KELO_EXPORT char* UnicodeStrCat(char*, const char*);
extern template KELO_EXPORT int UnicodeStringCmp(const char*, const char*, int);
