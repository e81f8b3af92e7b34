// keloaudio list.
#pragma once

#include "host/Command.h"

// Prints the components of the plug-ins and what each can do.
extern const SCommand kListCommand;
