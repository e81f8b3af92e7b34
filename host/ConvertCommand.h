// keloaudio convert.
#pragma once

#include "host/Command.h"

// Converts one file and prints the format and length of what was read and written. On failure nothing is left behind
// and an existing output stays as it was.
extern const SCommand kConvertCommand;
