// The settings of the file formats that are written.
#pragma once

#include <sndfile.h>

#include "plugins/sndfile/OutputFormat.h"
#include "sdk/Settings.h"

// With their defaults:
//   samples      integer or float, where samples are not compressed
//   compression  FLAC: 0 is the fastest, 8 the smallest
//   quality      0 to 10, 10 the best, decimals allowed: Vorbis as its own scale; MP3 as LAME's variable bit rates V10
//                to V0; Opus as 6 to 256 kbit/s per channel
//   bitrate      kbit/s: MP3 constant, Opus on average; empty leaves it to the quality
std::vector<SSetting> SettingsOf(const SOutputFormat& output);

// Throws for a value that the setting does not take.
void CheckSettingValue(const SOutputFormat& output, const std::string& name, const std::string& value);

// Throws for a bit rate that there is not with the sample rate and the channels of `accepted`.
void CheckBitRate(const SOutputFormat& output, const CSettings& settings, const SWavFormat& accepted);

bool WantsFloat(const CSettings& settings);

// Sets up a file before its first frame.
void ApplySettings(SNDFILE* file, const SOutputFormat& output, const CSettings& settings, const SWavFormat& accepted);
