// Sound files for the tests: hand-made WAV files, and files made and decoded by the codecs' own tools.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "stream/WavFormat.h"

// Real recordings of the system.
inline const std::string kVoice = "/usr/share/sounds/alsa/Front_Center.wav";
inline const std::string kNoise = "/usr/share/sounds/alsa/Noise.wav";
inline const std::string kBell = "/usr/share/sounds/freedesktop/stereo/bell.oga";
inline const std::string kAlarm = "/usr/share/sounds/freedesktop/stereo/alarm-clock-elapsed.oga";

inline std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// Runs a command line of the shell; a test whose tool fails has nothing to compare with.
inline void RunTool(const std::string& command) {
    ASSERT_EQ(std::system(("(" + command + ") >/dev/null 2>&1 </dev/null").c_str()), 0) << command;
}

inline std::string LittleEndian(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
}

inline std::string Chunk(const std::string& name, const std::string& content) {
    return name + LittleEndian(content.size(), 4) + content + std::string(content.size() % 2, '\0');
}

// A RIFF WAVE file; `tag` is 1 for PCM, 3 for float. `more` are chunks after the samples.
inline std::string WavFile(const SWavFormat& format, const std::string& samples, int tag = 1,
                           const std::string& more = "") {
    const auto block = static_cast<std::uint64_t>(BlockSizeOf(format));
    const auto rate = static_cast<std::uint64_t>(format.nSampleRate);
    const std::string header = LittleEndian(static_cast<std::uint64_t>(tag), 2) +
                               LittleEndian(static_cast<std::uint64_t>(format.nChannels), 2) + LittleEndian(rate, 4) +
                               LittleEndian(rate * block, 4) + LittleEndian(block, 2) +
                               LittleEndian(static_cast<std::uint64_t>(format.nBitsPerSample), 2);
    return Chunk("RIFF", "WAVE" + Chunk("fmt ", header) + Chunk("data", samples) + more);
}

// Bytes without any pattern, the same in every run.
inline std::string RandomBytes(std::size_t count) {
    std::mt19937 generator(20240229);
    std::string bytes;
    while (bytes.size() < count) bytes += static_cast<char>(generator());
    return bytes;
}

inline std::int16_t Sample16(const std::string& samples, std::size_t index) {
    std::int16_t sample = 0;
    std::memcpy(&sample, samples.data() + 2 * index, 2);
    return sample;
}

// The greatest difference of 16-bit samples over the common length.
inline int GreatestDifference(const std::string& left, const std::string& right) {
    int greatest = 0;
    for (std::size_t i = 0; i < std::min(left.size(), right.size()) / 2; ++i) {
        greatest = std::max(greatest, std::abs(Sample16(left, i) - Sample16(right, i)));
    }
    return greatest;
}
