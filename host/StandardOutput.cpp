// Standard output as a file that can fail.
#include "host/StandardOutput.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include "host/Failure.h"
#include "host/FailureText.h"

namespace {

bool g_bTold = false;

}  // namespace

void FlushStandardOutput() {
    errno = 0;
    const bool flushed = std::fflush(stdout) == 0;
    if (flushed && std::ferror(stdout) == 0) return;
    if (std::exchange(g_bTold, true)) return;
    // The reason of an earlier failure is gone.
    throw CFailure("standard output", SystemErrorText(errno != 0 ? errno : EIO));
}
