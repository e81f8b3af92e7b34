// A last word before a plug-in takes the program down.
#pragma once

#include <string>

// From here on a crash or an abort writes one line to standard error that names the plug-in directory and how to find
// the culprit; the program ends with the signal as it would without. Once, before plug-ins are loaded; threads
// that call plug-ins use a signal stack, so that a full stack is told too. [host set-up]
void NoteCrashes(const std::string& pluginDirectory);
