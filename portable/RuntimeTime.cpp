// Calendar time as text and fields, under their Windows runtime names.
#include "portable/RuntimeTime.h"

#include <errno.h>
#include <string.h>

namespace {

// POSIX.1-2017 ctime_r writes 25 characters and a terminator.
constexpr size_t kCtimeSize = 26;

bool IsCalendarTime(const time_t* t) { return t != nullptr && *t >= 0; }

}  // namespace

int ctime_s(char* buf, size_t size, const time_t* t) {
    if (buf == nullptr || size == 0) return EINVAL;
    if (size < kCtimeSize || !IsCalendarTime(t)) {
        buf[0] = '\0';
        return EINVAL;
    }
    if (ctime_r(t, buf) == nullptr) buf[0] = '\0';
    return errno;
}

int localtime_s(struct tm* out, const time_t* t) {
    if (out == nullptr) return EINVAL;
    memset(out, 0xFF, sizeof *out);
    if (!IsCalendarTime(t)) return EINVAL;
    localtime_r(t, out);
    return 0;
}
