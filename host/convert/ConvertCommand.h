// keloaudio convert.
#pragma once

#include "host/Command.h"

// Converts one file into another, one file to standard output, or many files. On failure nothing of the failed output
// is left behind and an existing one stays as it was.
extern const SCommand kConvertCommand;
