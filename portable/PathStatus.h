// The status record of a path, links not followed.
#pragma once

#include <sys/stat.h>

// False when there is no such path; a null path is none.
inline bool ReadPathStatus(const char* path, struct stat& status) {
    return path != nullptr && lstat(path, &status) == 0;
}
