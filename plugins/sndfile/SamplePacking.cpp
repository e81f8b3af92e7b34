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

// Samples of a width that the compiler knows: it makes loops without branches of them.
template <int kBytes>
struct SWidth {
    static constexpr int kLowestBit = 32 - 8 * kBytes;
    static constexpr std::uint32_t kSignFlip = kBytes == 1 ? 0x80000000u : 0u;

    static void Pack(const int* samples, std::size_t count, unsigned char* out) {
        for (std::size_t i = 0; i < count; ++i, out += kBytes) {
            const std::uint32_t sample = static_cast<std::uint32_t>(samples[i]) ^ kSignFlip;
            for (int byte = 0; byte < kBytes; ++byte) {
                out[byte] = static_cast<unsigned char>(sample >> (kLowestBit + 8 * byte));
            }
        }
    }

    static int Unpacked(const unsigned char* data) {
        std::uint32_t sample = 0;
        for (int byte = 0; byte < kBytes; ++byte) {
            sample |= static_cast<std::uint32_t>(data[byte]) << (kLowestBit + 8 * byte);
        }
        return static_cast<int>(sample ^ kSignFlip);
    }

    static void Unpack(const unsigned char* data, std::size_t count, int* samples) {
        for (std::size_t i = 0; i < count; ++i, data += kBytes) samples[i] = Unpacked(data);
    }

    static void UnpackFloats(const unsigned char* data, std::size_t count, float* samples) {
        for (std::size_t i = 0; i < count; ++i, data += kBytes) {
            samples[i] = static_cast<float>(Unpacked(data)) / 2147483648.0f;
        }
    }
};

// Calls `use` with the width of `bytes` bytes.
template <typename TUse>
void WithWidth(int bytes, TUse use) {
    switch (bytes) {
        case 1:
            return use(SWidth<1>());
        case 2:
            return use(SWidth<2>());
        case 3:
            return use(SWidth<3>());
        default:
            return use(SWidth<4>());
    }
}

}  // namespace

void PackIntegers(const int* samples, std::size_t count, int bytes, unsigned char* out) {
    WithWidth(bytes, [&](auto width) { width.Pack(samples, count, out); });
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
    WithWidth(bytes, [&](auto width) { width.Unpack(data, count, samples); });
}

void UnpackFloats(const unsigned char* data, std::size_t count, int bytes, float* samples) {
    WithWidth(bytes, [&](auto width) { width.UnpackFloats(data, count, samples); });
}
