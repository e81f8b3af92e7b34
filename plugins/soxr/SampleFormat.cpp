// Packed samples to and from samples by channel.
#include "plugins/soxr/SampleFormat.h"

#include <cstring>

namespace {

// Turns the unsigned 8-bit middle, 128, into 0 and back.
constexpr std::uint32_t kMiddle = 0x80;

template <typename TBits>
TBits LoadBits(const unsigned char* packed) {
    TBits bits;
    std::memcpy(&bits, packed, sizeof bits);
    return bits;
}

template <typename TBits>
void StoreBits(std::uint32_t bits, unsigned char* packed) {
    const auto kept = static_cast<TBits>(bits);
    std::memcpy(packed, &kept, sizeof kept);
}

// In the upper bytes of the result.
template <unsigned kBytes>
std::int32_t Load(const unsigned char* packed) {
    if constexpr (kBytes == 1) return static_cast<std::int32_t>((packed[0] ^ kMiddle) << 24);
    if constexpr (kBytes == 2) return static_cast<std::int32_t>(std::uint32_t{LoadBits<std::uint16_t>(packed)} << 16);
    if constexpr (kBytes == 3) {
        const std::uint32_t lower = LoadBits<std::uint16_t>(packed);
        return static_cast<std::int32_t>(lower << 8 | static_cast<std::uint32_t>(packed[2]) << 24);
    }
    return LoadBits<std::int32_t>(packed);
}

// As Load, but may read a byte behind the sample: four bytes at once are quicker than three.
template <unsigned kBytes>
std::int32_t LoadWithinData(const unsigned char* packed) {
    if constexpr (kBytes == 3) return static_cast<std::int32_t>(LoadBits<std::uint32_t>(packed) << 8);
    return Load<kBytes>(packed);
}

template <unsigned kBytes>
void Store(std::int32_t sample, unsigned char* packed) {
    const auto bits = static_cast<std::uint32_t>(sample);
    if constexpr (kBytes == 1) *packed = static_cast<unsigned char>(bits ^ kMiddle);
    if constexpr (kBytes == 2) StoreBits<std::uint16_t>(bits, packed);
    if constexpr (kBytes == 3) {
        StoreBits<std::uint16_t>(bits, packed);
        packed[2] = static_cast<unsigned char>(bits >> 16);
    }
    if constexpr (kBytes == 4) StoreBits<std::uint32_t>(bits, packed);
}

template <unsigned kBytes, typename TSample>
void Unpack(const unsigned char* packed, std::size_t frames, std::size_t channels, TSample* const* samples) {
    constexpr TSample kScale = TSample{1} / 2147483648.0F;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const unsigned char* from = packed + channel * kBytes;
        TSample* const to = samples[channel];
        for (std::size_t i = 0; i + 1 < frames; ++i, from += channels * kBytes) {
            to[i] = static_cast<TSample>(LoadWithinData<kBytes>(from)) * kScale;
        }
        if (frames > 0) to[frames - 1] = static_cast<TSample>(Load<kBytes>(from)) * kScale;
    }
}

// Compilers turn the one loop into shuffles of several frames.
template <typename TSample>
void UnpackFloatPairs(const unsigned char* packed, std::size_t frames, TSample* __restrict left,
                      TSample* __restrict right) {
    for (std::size_t i = 0; i < frames; ++i) {
        float pair[2];
        std::memcpy(pair, packed + i * sizeof pair, sizeof pair);
        left[i] = pair[0];
        right[i] = pair[1];
    }
}

template <unsigned kBytes>
void Pack(const std::int32_t* const* samples, std::size_t frames, std::size_t channels, unsigned char* packed) {
    const std::size_t frameBytes = channels * kBytes;
    std::size_t channel = 0;
    // Two channels in one loop cost little more than one.
    for (; channel + 1 < channels; channel += 2) {
        const std::int32_t* const left = samples[channel];
        const std::int32_t* const right = samples[channel + 1];
        unsigned char* to = packed + channel * kBytes;
        for (std::size_t i = 0; i < frames; ++i, to += frameBytes) {
            Store<kBytes>(left[i], to);
            Store<kBytes>(right[i], to + kBytes);
        }
    }
    if (channel == channels) return;
    unsigned char* to = packed + channel * kBytes;
    for (std::size_t i = 0; i < frames; ++i, to += frameBytes) Store<kBytes>(samples[channel][i], to);
}

}  // namespace

template <typename TSample>
void UnpackIntegers(const unsigned char* packed, std::size_t frames, std::size_t channels, int bits,
                    TSample* const* samples) {
    switch (bits) {
        case 8:
            return Unpack<1>(packed, frames, channels, samples);
        case 16:
            return Unpack<2>(packed, frames, channels, samples);
        case 24:
            return Unpack<3>(packed, frames, channels, samples);
        default:
            return Unpack<4>(packed, frames, channels, samples);
    }
}

template <typename TSample>
void UnpackFloats(const unsigned char* packed, std::size_t frames, std::size_t channels, TSample* const* samples) {
    if (channels == 2) return UnpackFloatPairs(packed, frames, samples[0], samples[1]);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const unsigned char* from = packed + channel * sizeof(float);
        for (std::size_t i = 0; i < frames; ++i, from += channels * sizeof(float)) {
            float sample;
            std::memcpy(&sample, from, sizeof sample);
            samples[channel][i] = sample;
        }
    }
}

void PackIntegers(const std::int32_t* const* samples, std::size_t frames, std::size_t channels, int bits,
                  unsigned char* packed) {
    switch (bits) {
        case 8:
            return Pack<1>(samples, frames, channels, packed);
        case 16:
            return Pack<2>(samples, frames, channels, packed);
        case 24:
            return Pack<3>(samples, frames, channels, packed);
        default:
            return Pack<4>(samples, frames, channels, packed);
    }
}

template <typename TSample>
void PackFloats(const TSample* const* samples, std::size_t frames, std::size_t channels, unsigned char* packed) {
    for (std::size_t channel = 0; channel < channels; ++channel) {
        unsigned char* to = packed + channel * sizeof(float);
        for (std::size_t i = 0; i < frames; ++i, to += channels * sizeof(float)) {
            const auto sample = static_cast<float>(samples[channel][i]);
            std::memcpy(to, &sample, sizeof sample);
        }
    }
}

template void UnpackIntegers(const unsigned char*, std::size_t, std::size_t, int, float* const*);
template void UnpackIntegers(const unsigned char*, std::size_t, std::size_t, int, double* const*);
template void UnpackFloats(const unsigned char*, std::size_t, std::size_t, float* const*);
template void UnpackFloats(const unsigned char*, std::size_t, std::size_t, double* const*);
template void PackFloats(const float* const*, std::size_t, std::size_t, unsigned char*);
template void PackFloats(const double* const*, std::size_t, std::size_t, unsigned char*);
