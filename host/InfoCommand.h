// keloaudio info.
#pragma once

#include "host/Command.h"

// Prints what decoders tell about sources: formats, lengths, tags, index points. A source that fails does not stop the
// others.
extern const SCommand kInfoCommand;
