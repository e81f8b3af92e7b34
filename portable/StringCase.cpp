// Reversing and case conversion in place, under their Windows runtime names.
#include "portable/StringCase.h"

#include <ctype.h>
#include <errno.h>
#include <string.h>

#include <algorithm>

namespace {

using ByteConverter = int (*)(int);

char* ConvertBytes(char* s, ByteConverter convert) {
    for (char* byte = s; *byte != '\0'; ++byte) *byte = static_cast<char>(convert(static_cast<unsigned char>(*byte)));
    return s;
}

int ConvertBoundedBytes(char* s, size_t size, ByteConverter convert) {
    if (s == nullptr) return errno = EINVAL;
    if (strnlen(s, size) == size) {
        if (size != 0) s[0] = '\0';
        return errno = EINVAL;
    }
    ConvertBytes(s, convert);
    return 0;
}

}  // namespace

char* _strrev(char* s) {
    std::reverse(s, s + strlen(s));
    return s;
}

char* _strlwr(char* s) { return ConvertBytes(s, tolower); }

char* _strupr(char* s) { return ConvertBytes(s, toupper); }

int _strlwr_s(char* s, size_t size) { return ConvertBoundedBytes(s, size, tolower); }

int _strupr_s(char* s, size_t size) { return ConvertBoundedBytes(s, size, toupper); }
