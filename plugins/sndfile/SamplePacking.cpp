// Samples of the codec as packed little-endian PCM and back.
#include "plugins/sndfile/SamplePacking.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

std::int16_t RoundedTo16(float sample) {
    const float scaled = sample * 32768.0f;
    if (scaled >= 32767.0f) return 32767;
    if (scaled > -32768.0f) return static_cast<std::int16_t>(std::lrintf(scaled));
    return static_cast<std::int16_t>(std::isnan(scaled) ? 0 : -32768);
}

constexpr std::uint32_t SignFlip(int bytes) { return bytes == 1 ? 0x80000000u : 0u; }

int Unpacked(const unsigned char* data, int bytes) {
    std::uint32_t sample = 0;
    for (int byte = 4 - bytes; byte < 4; ++byte) sample |= static_cast<std::uint32_t>(*data++) << (8 * byte);
    return static_cast<int>(sample ^ SignFlip(bytes));
}

}  // namespace

void PackIntegers(const int* samples, std::size_t count, int bytes, unsigned char* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t sample = static_cast<std::uint32_t>(samples[i]) ^ SignFlip(bytes);
        for (int byte = 4 - bytes; byte < 4; ++byte) *out++ = static_cast<unsigned char>(sample >> (8 * byte));
    }
}

void PackRounded(const float* samples, std::size_t count, unsigned char* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto sample = static_cast<std::uint16_t>(RoundedTo16(samples[i]));
        *out++ = static_cast<unsigned char>(sample);
        *out++ = static_cast<unsigned char>(sample >> 8);
    }
}

// The processor is little-endian.
void PackFloats(const float* samples, std::size_t count, unsigned char* out) {
    std::memcpy(out, samples, count * sizeof(float));
}

void UnpackIntegers(const unsigned char* data, std::size_t count, int bytes, int* samples) {
    for (std::size_t i = 0; i < count; ++i, data += bytes) samples[i] = Unpacked(data, bytes);
}

void UnpackFloats(const unsigned char* data, std::size_t count, int bytes, float* samples) {
    for (std::size_t i = 0; i < count; ++i, data += bytes) {
        samples[i] = static_cast<float>(Unpacked(data, bytes)) / 2147483648.0f;
    }
}
