// Signals in words.
#pragma once

#include <string>

// "SIGABRT"; "signal 34" for one without a name.
std::string SignalName(int signal);
