// Everything that a plug-in does, once.
#pragma once

#include "host/validate/Trial.h"

// Reads samples, writes files, converts and fetches with whatever the plug-in has, and releases all of it. What other
// checks have found broken is left out. The components stay initialised.
void Exercise(CTrial& trial);
