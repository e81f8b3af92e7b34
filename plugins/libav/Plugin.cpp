// The plug-in's entry symbols.
#include "sdk/Plugin.h"

#include "plugins/libav/Decoder.h"

KELO_PLUGIN(CLibavDecoder);
