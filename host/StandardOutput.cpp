// Standard output as a file that can fail.
#include "host/StandardOutput.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/StopSignal.h"

namespace {

constexpr const char* kSubject = "standard output";

bool g_bTold = false;

}  // namespace

void FlushStandardOutput() {
    errno = 0;
    const bool flushed = std::fflush(stdout) == 0;
    if (flushed && std::ferror(stdout) == 0) return;
    if (std::exchange(g_bTold, true)) return;
    // The reason of an earlier failure is gone.
    throw CFailure(kSubject, SystemErrorText(errno != 0 ? errno : EIO));
}

void WriteToStandardOutput(const char* data, std::size_t size) {
    // Standard output's buffer would go on after a signal that ends a wait in the middle of it.
    while (size > 0) {
        if (GetStopSignal() != 0) throw CFailure(kSubject, "interrupted, not all of it is written");
        const ssize_t written = write(STDOUT_FILENO, data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) throw CFailure(kSubject, SystemErrorText(errno));
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}
