// Opening files and reading lines, under their Windows runtime names.
#include "portable/RuntimeFiles.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>

int fopen_s(FILE** pf, const char* path, const char* mode) {
    if (pf == nullptr || path == nullptr || mode == nullptr || *mode == '\0') return errno = EINVAL;
    *pf = fopen64(path, mode);
    return *pf != nullptr ? 0 : errno;
}

int sopen_s(int* pfh, const char* path, int oflag, int /*shflag*/, int pmode) {
    constexpr int kOwnerAccess = S_IRUSR | S_IWUSR;
    if (pfh == nullptr) return EINVAL;
    *pfh = -1;
    if (path == nullptr || (pmode & ~kOwnerAccess) != 0) return EINVAL;
    *pfh = open64(path, oflag, pmode);
    // Even after success: callers test the descriptor.
    return errno;
}

char* gets_s(char* buf, size_t size) {
    if (buf == nullptr || size == 0) {
        errno = EINVAL;
        return nullptr;
    }
    if (fgets(buf, static_cast<int>(std::min<size_t>(size, INT_MAX)), stdin) == nullptr) return nullptr;
    const size_t length = strlen(buf);
    if (length != 0 && buf[length - 1] == '\n') buf[length - 1] = '\0';
    return buf;
}
