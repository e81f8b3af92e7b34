// Signals in words.
#include "host/validate/SignalName.h"

#include <string.h>

std::string SignalName(int signal) {
    const char* const name = sigabbrev_np(signal);
    return name == nullptr ? "signal " + std::to_string(signal) : std::string("SIG") + name;
}
