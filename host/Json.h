// What the commands say to programs.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>

#include "stream/WavFormat.h"

// {"sampleRate": 48000, "bits": 16, "channels": 2, "float": false}
nlohmann::ordered_json FormatJson(const SHeldWavFormat& format);

double SecondsOf(std::uint64_t frames, std::int32_t sampleRate);

// Prints the document to standard output; bytes that are not UTF-8 come out as U+FFFD.
void PrintJson(const nlohmann::ordered_json& document);
