// keloaudio convert.
#pragma once

#include <string>

#include "host/Options.h"

// Converts one file and prints the format and length of what was read and written. On failure (CFailure) nothing is
// left behind and an existing output stays as it was.
void RunConvert(const SConvertOptions& options, const std::string& pluginDirectory);
