// keloaudio validate.
#pragma once

#include "host/Command.h"

// Holds plug-ins to what the manager and hosts rely on.
extern const SCommand kValidateCommand;
