// The sound that the validator works with.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "stream/WavFormat.h"

using CBytes = std::vector<unsigned char>;

constexpr SWavFormat kSampleFormat{44100, 16, 2};
constexpr const char* kSampleFileName = "sample.wav";

// No multiple of a block size that a codec may have.
constexpr std::int64_t kSampleFrames = 5003;

// Index points and tags of the sample file.
constexpr std::uint64_t kSampleIndexPoints[] = {1500, 4000};
constexpr const char* kSampleTitle = "Kelo sample";
constexpr const char* kSampleArtist = "keloaudio";

// `frames` frames of integer samples: a tone that rises in the even channels and falls in the odd ones, at half of full
// scale, so that no two places sound alike.
CBytes MakeSound(const SWavFormat& format, std::int64_t frames);

// MakeSound(kSampleFormat, kSampleFrames) as a RIFF WAVE file with index points, a title and an artist.
CBytes MakeSampleFile();

// Throws CFailure when the file cannot be written.
void WriteFile(const std::string& path, const CBytes& bytes);

// Empty for a file that cannot be read.
CBytes ReadFile(const std::string& path);
