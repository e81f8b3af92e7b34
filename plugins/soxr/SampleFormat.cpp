// Packed PCM to and from 32-bit samples.
#include "plugins/soxr/SampleFormat.h"

namespace {

// Turns the unsigned 8-bit middle, 128, into 0 and back.
constexpr std::uint32_t kSignBit = 0x80000000U;

template <unsigned kBytes>
void Unpack(const unsigned char* packed, std::size_t count, std::uint32_t flip, std::int32_t* samples) {
    for (std::size_t i = 0; i < count; ++i, packed += kBytes) {
        std::uint32_t sample = 0;
        for (unsigned byte = 0; byte < kBytes; ++byte) {
            sample |= static_cast<std::uint32_t>(packed[byte]) << (8 * (4 - kBytes + byte));
        }
        samples[i] = static_cast<std::int32_t>(sample ^ flip);
    }
}

template <unsigned kBytes>
void Pack(const std::int32_t* samples, std::size_t count, std::uint32_t flip, unsigned char* packed) {
    for (std::size_t i = 0; i < count; ++i, packed += kBytes) {
        const std::uint32_t sample = static_cast<std::uint32_t>(samples[i]) ^ flip;
        for (unsigned byte = 0; byte < kBytes; ++byte) {
            packed[byte] = static_cast<unsigned char>(sample >> (8 * (4 - kBytes + byte)));
        }
    }
}

}  // namespace

void UnpackSamples(const unsigned char* packed, std::size_t count, int bits, std::int32_t* samples) {
    switch (bits) {
        case 8:
            return Unpack<1>(packed, count, kSignBit, samples);
        case 16:
            return Unpack<2>(packed, count, 0, samples);
        case 24:
            return Unpack<3>(packed, count, 0, samples);
        default:
            return Unpack<4>(packed, count, 0, samples);
    }
}

void PackSamples(const std::int32_t* samples, std::size_t count, int bits, unsigned char* packed) {
    switch (bits) {
        case 8:
            return Pack<1>(samples, count, kSignBit, packed);
        case 16:
            return Pack<2>(samples, count, 0, packed);
        case 24:
            return Pack<3>(samples, count, 0, packed);
        default:
            return Pack<4>(samples, count, 0, packed);
    }
}
