// The places of the standard streams.
#include "host/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

bool OccupyStandardStreams() {
    // From the lowest on: a new descriptor is the lowest that is free.
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) != -1) continue;
        // The direction that the stream is not for fails with EBADF, as a closed descriptor does.
        if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream) return false;
    }
    return true;
}
