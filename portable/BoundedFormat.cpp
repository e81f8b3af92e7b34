// printf and scanf into bounded buffers, under their Windows runtime names.
#include "portable/BoundedFormat.h"

#include <errno.h>
#include <stdio.h>

namespace {

int Refuse(int error) {
    errno = error;
    return -1;
}

int Empty(char* dst) {
    dst[0] = '\0';
    return -1;
}

// A cut that was asked for is no range error, whatever libc says.
int KeepCutText(int errnoBefore) {
    if (errno == ERANGE) errno = errnoBefore;
    return -1;
}

}  // namespace

int sprintf_s(char* dst, size_t size, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const int written = _vsprintf_s(dst, size, fmt, args);
    va_end(args);
    return written;
}

int _vsprintf_s(char* dst, size_t size, const char* fmt, va_list args) {
    if (fmt == nullptr || dst == nullptr || size == 0) return Refuse(EINVAL);
    const int length = vsnprintf(dst, size, fmt, args);
    if (length < 0) return Empty(dst);
    if (static_cast<size_t>(length) < size) return length;
    Empty(dst);
    return Refuse(ERANGE);
}

int _snprintf_s(char* dst, size_t size, size_t count, const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    const int written = _vsnprintf_s(dst, size, count, fmt, args);
    va_end(args);
    return written;
}

int _vsnprintf_s(char* dst, size_t size, size_t count, const char* fmt, va_list args) {
    if (fmt == nullptr) return Refuse(EINVAL);
    if (dst == nullptr && size == 0 && count == 0) return 0;
    if (dst == nullptr || size == 0) return Refuse(EINVAL);

    const int errnoBefore = errno;
    const size_t room = count < size ? count + 1 : size;
    const int length = vsnprintf(dst, room, fmt, args);
    if (count >= size) dst[size - 1] = '\0';
    if (length < 0) return Empty(dst);
    if (static_cast<size_t>(length) < room) return length;
    if (count < size || count == _TRUNCATE) return KeepCutText(errnoBefore);
    Empty(dst);
    return Refuse(ERANGE);
}

int sscanf_s(const char* s, const char* fmt, ...) {
    if (s == nullptr || fmt == nullptr) return Refuse(EINVAL);
    va_list args;
    va_start(args, fmt);
    const int assigned = vsscanf(s, fmt, args);
    va_end(args);
    return assigned;
}
