// A codec's samples as packed little-endian PCM.
#include "plugins/libav/SamplePacking.h"

#include <cstring>

namespace {

// Integer samples with their highest bit where 32 bits have theirs; unsigned ones become signed.
std::uint32_t LeftAligned(std::uint8_t sample) { return static_cast<std::uint32_t>(sample ^ 0x80) << 24; }
std::uint32_t LeftAligned(std::int16_t sample) { return static_cast<std::uint32_t>(sample) << 16; }
std::uint32_t LeftAligned(std::int32_t sample) { return static_cast<std::uint32_t>(sample); }
std::uint32_t LeftAligned(std::int64_t sample) { return static_cast<std::uint32_t>(sample >> 32); }

// The upper `kBytes` bytes, lowest first; 8-bit samples are unsigned in the output.
template <int kBytes>
struct SIntegerOutput {
    static constexpr int kSize = kBytes;

    template <typename TSample>
    static void Put(TSample sample, unsigned char* out) {
        const std::uint32_t value = LeftAligned(sample) ^ (kBytes == 1 ? 0x80000000u : 0u);
        for (int byte = 0; byte < kBytes; ++byte)
            out[byte] = static_cast<unsigned char>(value >> (32 - 8 * (kBytes - byte)));
    }
};

// Rounds to even as the processor does: the sum's unit in the last place is 1.
std::int16_t RoundedTo16(float sample) {
    constexpr float kUnitIsOne = 12582912.0f;  // 1.5 * 2^23
    const float scaled = sample * 32768.0f;
    const float number = scaled == scaled ? scaled : 0.0f;
    const float low = number > -32768.0f ? number : -32768.0f;
    const float sum = (low < 32767.0f ? low : 32767.0f) + kUnitIsOne;
    std::uint32_t bits = 0;
    std::memcpy(&bits, &sum, sizeof bits);
    return static_cast<std::int16_t>(bits);
}

struct SRoundedOutput {
    static constexpr int kSize = 2;

    template <typename TSample>
    static void Put(TSample sample, unsigned char* out) {
        const std::int16_t value = RoundedTo16(static_cast<float>(sample));
        std::memcpy(out, &value, sizeof value);
    }
};

struct SFloatOutput {
    static constexpr int kSize = 4;

    template <typename TSample>
    static void Put(TSample sample, unsigned char* out) {
        const auto value = static_cast<float>(sample);
        std::memcpy(out, &value, sizeof value);
    }
};

// Which frames of a block, and where to.
struct SPiece {
    const AVFrame& m_block;
    std::size_t m_nFirst;
    std::size_t m_nCount;
    unsigned char* m_pOut;

    std::size_t Channels() const { return static_cast<std::size_t>(m_block.ch_layout.nb_channels); }

    template <typename TSample>
    const TSample* Plane(std::size_t channel) const {
        return reinterpret_cast<const TSample*>(m_block.extended_data[channel]);
    }
};

template <typename TOutput, typename TSample>
void PackInterleaved(const SPiece& piece) {
    const TSample* const samples = piece.Plane<TSample>(0) + piece.m_nFirst * piece.Channels();
    const std::size_t count = piece.m_nCount * piece.Channels();
    unsigned char* out = piece.m_pOut;
    for (std::size_t i = 0; i < count; ++i, out += TOutput::kSize) TOutput::Put(samples[i], out);
}

// One loop for the common case, so that it writes its output once.
template <typename TOutput, typename TSample>
void PackTwoPlanes(const SPiece& piece) {
    const TSample* const left = piece.Plane<TSample>(0) + piece.m_nFirst;
    const TSample* const right = piece.Plane<TSample>(1) + piece.m_nFirst;
    unsigned char* out = piece.m_pOut;
    for (std::size_t i = 0; i < piece.m_nCount; ++i, out += 2 * TOutput::kSize) {
        TOutput::Put(left[i], out);
        TOutput::Put(right[i], out + TOutput::kSize);
    }
}

template <typename TOutput, typename TSample>
void PackPlanes(const SPiece& piece) {
    const std::size_t step = piece.Channels() * TOutput::kSize;
    for (std::size_t channel = 0; channel < piece.Channels(); ++channel) {
        const TSample* const samples = piece.Plane<TSample>(channel) + piece.m_nFirst;
        unsigned char* out = piece.m_pOut + channel * TOutput::kSize;
        for (std::size_t i = 0; i < piece.m_nCount; ++i, out += step) TOutput::Put(samples[i], out);
    }
}

template <typename TOutput, typename TSample>
void Pack(const SPiece& piece) {
    if (av_sample_fmt_is_planar(static_cast<AVSampleFormat>(piece.m_block.format)) == 0) {
        PackInterleaved<TOutput, TSample>(piece);
    } else if (piece.Channels() == 2) {
        PackTwoPlanes<TOutput, TSample>(piece);
    } else {
        PackPlanes<TOutput, TSample>(piece);
    }
}

template <typename TSample>
void PackIntegers(const SPiece& piece, int bytes) {
    switch (bytes) {
        case 1:
            return Pack<SIntegerOutput<1>, TSample>(piece);
        case 2:
            return Pack<SIntegerOutput<2>, TSample>(piece);
        case 3:
            return Pack<SIntegerOutput<3>, TSample>(piece);
        default:
            return Pack<SIntegerOutput<4>, TSample>(piece);
    }
}

template <typename TSample>
void PackFloats(const SPiece& piece, std::int32_t qualifier) {
    return qualifier == kFloatSamples ? Pack<SFloatOutput, TSample>(piece) : Pack<SRoundedOutput, TSample>(piece);
}

}  // namespace

void PackSamples(const AVFrame& block, std::int64_t first, std::int64_t count, const SHeldWavFormat& format,
                 unsigned char* out) {
    const SPiece piece{block, static_cast<std::size_t>(first), static_cast<std::size_t>(count), out};
    const int bytes = format.m_format.nBitsPerSample / 8;
    switch (av_get_packed_sample_fmt(static_cast<AVSampleFormat>(block.format))) {
        case AV_SAMPLE_FMT_U8:
            return PackIntegers<std::uint8_t>(piece, bytes);
        case AV_SAMPLE_FMT_S16:
            return PackIntegers<std::int16_t>(piece, bytes);
        case AV_SAMPLE_FMT_S32:
            return PackIntegers<std::int32_t>(piece, bytes);
        case AV_SAMPLE_FMT_S64:
            return PackIntegers<std::int64_t>(piece, bytes);
        case AV_SAMPLE_FMT_DBL:
            return PackFloats<double>(piece, format.m_nQualifier);
        default:
            return PackFloats<float>(piece, format.m_nQualifier);
    }
}
