// keloaudio settings.
#pragma once

#include "host/Command.h"

// Shows the settings dialog of the plug-ins until it is closed; succeeds when it was accepted. Where there is no dialog
// the library says why on standard error.
extern const SCommand kSettingsCommand;
