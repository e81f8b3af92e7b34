// Standard output as a file that can fail.
#include "host/StandardOutput.h"

#include <cerrno>
#include <cstdio>

#include "host/Failure.h"
#include "host/FailureText.h"

void FlushStandardOutput() {
    errno = 0;
    const bool flushed = std::fflush(stdout) == 0;
    if (flushed && std::ferror(stdout) == 0) return;
    // The reason of an earlier failure is gone.
    throw CFailure("standard output", SystemErrorText(errno != 0 ? errno : EIO));
}
