// libgomp, which libsoxr brings along, under a leak checker.
#pragma once

#include <stdlib.h>

#include "tests/support/Sanitizers.h"

namespace support {

// For programs that the test starts from here on: libgomp leaves 8 bytes behind when it is unloaded with the plug-in;
// loaded by the program itself it stays, and the leak checker sees that the bytes are in use.
inline void HoldLibgompInPrograms() {
    if (!kAddressSanitizer) return;
    setenv("LD_PRELOAD", "libgomp.so.1", 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
}

}  // namespace support
