// libavformat, libavcodec and libavutil, loaded at their first use.
#pragma once

#include <string>

// Makes the libraries usable, or throws the reason why they cannot be: one is missing, or is another one than this
// plug-in was built for. Loading takes some 30 ms, so it is left to whoever opens a file. [any thread]
void RequireLibav();

// Names libavformat and its version, or the reason why it cannot be used. [any thread]
std::string LibavName();
