// A convertor plug-in to copy: changes the bits per sample and nothing else. Replace the arithmetic by your own.
#include <algorithm>
#include <cstring>

#include "sdk/Convertor.h"
#include "sdk/Plugin.h"

namespace {

bool IsKnownWidth(std::int32_t bits) { return bits == 16 || bits == 24 || bits == 32; }

// One sample of `bytes` little-endian bytes, in the upper bits of 32.
std::int32_t Load(const unsigned char* data, int bytes) {
    std::uint32_t sample = 0;
    for (int i = 0; i < bytes; ++i) sample |= static_cast<std::uint32_t>(data[i]) << (32 - 8 * (bytes - i));
    return static_cast<std::int32_t>(sample);
}

void Store(std::int32_t sample, unsigned char* data, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        data[i] = static_cast<unsigned char>(static_cast<std::uint32_t>(sample) >> (32 - 8 * (bytes - i)));
    }
}

// Whatever is thrown reaches the host as a false result with these words. [stream-thread]
class CWidthConversion final : public CConversion {
public:
    CWidthConversion(const SWavFormat& from, const SWavFormat& to)
        : m_nChannels(from.nChannels), m_nFromBytes(from.nBitsPerSample / 8), m_nToBytes(to.nBitsPerSample / 8) {}

    void Write(const unsigned char* data, std::int64_t frames, CByteQueue& output) override {
        const std::int64_t samples = frames * m_nChannels;
        const std::size_t bytes = static_cast<std::size_t>(samples * m_nToBytes);
        unsigned char* out = output.Reserve(bytes);
        for (std::int64_t i = 0; i < samples; ++i) {
            Store(Round(Load(data, m_nFromBytes)), out, m_nToBytes);
            data += m_nFromBytes;
            out += m_nToBytes;
        }
        output.Commit(bytes);
    }

    std::uint64_t GetClippedSamples() const override { return m_nClipped; }

private:
    // To the nearest value that the output's width has; the largest values are limited to it.
    std::int32_t Round(std::int32_t sample) {
        if (m_nToBytes >= m_nFromBytes) return sample;
        const std::int64_t unit = std::int64_t{1} << (32 - 8 * m_nToBytes);
        const std::int64_t rounded = sample + unit / 2;
        const std::int64_t limit = (std::int64_t{1} << 31) - unit;
        if (rounded > limit + unit - 1) ++m_nClipped;
        return static_cast<std::int32_t>(std::min(rounded, limit + unit - 1));
    }

    int m_nChannels;
    int m_nFromBytes;
    int m_nToBytes;
    std::uint64_t m_nClipped = 0;
};

class CWidthConvertor final : public CConvertorComponent<> {
public:
    CWidthConvertor() : CConvertorComponent("Width Convertor") {}

private:
    std::unique_ptr<CConversion> CreateConversion(const SHeldWavFormat& from, const SHeldWavFormat& to) override {
        if (from.m_nQualifier != kIntegerSamples || to.m_nQualifier != kIntegerSamples) Refuse("only integer samples");
        if (!IsKnownWidth(from.m_format.nBitsPerSample) || !IsKnownWidth(to.m_format.nBitsPerSample)) {
            Refuse("only 16, 24 and 32 bits");
        }
        if (from.m_format.nSampleRate != to.m_format.nSampleRate) Refuse("the sample rate cannot be changed");
        if (from.m_format.nChannels != to.m_format.nChannels) Refuse("the number of channels cannot be changed");
        return std::make_unique<CWidthConversion>(from.m_format, to.m_format);
    }
};

}  // namespace

KELO_PLUGIN(CWidthConvertor);
