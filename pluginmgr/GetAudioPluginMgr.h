// The library's entry point.
#pragma once

#include "portable/Export.h"
#include "stream/AudioPluginMgrInterface.h"

// Stores the process's one manager, created on first use, with one reference that the caller owns.
// Sets the process's locale from the environment and binds the library's text domain at every call.
// Returns 1 when `*manager` is not null afterwards, else 0. [any thread] as far as the manager goes; setlocale(3) is
// not safe beside threads that use the locale.
extern "C" KELO_EXPORT int GetAudioPluginMgr(IAudioPluginMgr** manager);
