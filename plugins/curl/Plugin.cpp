// The plug-in's entry symbols.
#include "sdk/Plugin.h"

#include "plugins/curl/CurlHandler.h"

KELO_PLUGIN(CCurlHandler);
