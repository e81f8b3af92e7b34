// Which format a conversion aims at.
#pragma once

#include <string>

#include "host/convert/ConvertOptions.h"
#include "stream/WavFormat.h"

// What the options ask for, and for what they leave open the source's own. The bits of float samples are 16 where they
// come from a lossy format and go into one that is not, else 32: the encoder takes as many of these as its format has.
SWavFormat AimedFormat(const SFormatOptions& options, const SHeldWavFormat& source, const std::string& sourceExtension,
                       const std::string& targetExtension);
