// Packed samples to and from samples by channel.
#include <cmath>

#include "plugins/soxr/PlanarBuffer.h"
#include "plugins/soxr/SampleFormat.h"
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

struct SSample {
    int m_nBits;
    CBytes m_packed;
    int m_nInteger;
};

const SSample kSamples[] = {
    {8, {128}, 0},
    {8, {255}, 127},
    {8, {0}, -128},
    {8, {129}, 1},
    {16, {0x34, 0x12}, 0x1234},
    {16, {0x00, 0x80}, -0x8000},
    {16, {0xFF, 0xFF}, -1},
    {24, {0x56, 0x34, 0x12}, 0x123456},
    {24, {0xFF, 0xFF, 0x7F}, 0x7FFFFF},
    {24, {0x01, 0x00, 0x80}, -0x7FFFFF},
    {32, {0x78, 0x56, 0x34, 0x12}, 0x12345678},
    {32, {0x01, 0x00, 0x00, 0x80}, -0x7FFFFFFF},
};

TEST(SoxrSampleFormat, PackedIntegersAreLittleEndianAndEightBitsAreUnsigned) {
    for (const SSample& entry : kSamples) {
        double real = 0;
        double* const channel = &real;
        UnpackIntegers(entry.m_packed.data(), 1, 1, entry.m_nBits, &channel);
        EXPECT_EQ(real, std::ldexp(entry.m_nInteger, 1 - entry.m_nBits)) << entry.m_nBits;
        const std::int32_t* const integer = &entry.m_nInteger;
        CBytes packed(entry.m_packed.size());
        PackIntegers(&integer, 1, 1, entry.m_nBits, packed.data());
        EXPECT_EQ(packed, entry.m_packed) << entry.m_nBits;
    }
}

template <typename TSample>
void ExpectUnpacked(int bits, std::size_t channels) {
    constexpr std::size_t kFrames = 37;
    const CBytes packed = RandomBytes(kFrames * channels * static_cast<std::size_t>(bits / 8));
    CPlanarBuffer<TSample> samples(channels, kFrames);
    UnpackIntegers(packed.data(), kFrames, channels, bits, samples.From(0));
    CPlanarBuffer<std::int32_t> integers(channels, kFrames);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        for (std::size_t i = 0; i < kFrames; ++i) {
            const auto level = static_cast<double>(samples.Channel(channel)[i]);
            integers.Channel(channel)[i] = static_cast<std::int32_t>(std::ldexp(level, bits - 1));
        }
    }
    CBytes again(packed.size());
    PackIntegers(integers.From(0), kFrames, channels, bits, again.data());
    EXPECT_EQ(again, packed) << bits << ", " << channels;
}

TEST(SoxrSampleFormat, PackingUndoesUnpackingAtEveryWidthAndNumberOfChannels) {
    for (std::size_t channels = 1; channels <= 8; ++channels) {
        for (const int bits : {8, 16, 24}) ExpectUnpacked<float>(bits, channels);
        for (const int bits : {8, 16, 24, 32}) ExpectUnpacked<double>(bits, channels);
    }
}

TEST(SoxrSampleFormat, FloatsAreStoredAsTheyAre) {
    const std::vector<float> floats{0.0F, -1.0F, 3e38F, 1e-40F, 0.1F, 123.0F};
    CPlanarBuffer<double> samples(3, 2);
    UnpackFloats(PackedFloats(floats).data(), 2, 3, samples.From(0));
    EXPECT_EQ(samples.Channel(0)[1], static_cast<double>(floats[3]));
    EXPECT_EQ(samples.Channel(2)[0], static_cast<double>(floats[2]));
    CBytes packed(floats.size() * sizeof(float));
    PackFloats(samples.From(0), 2, 3, packed.data());
    EXPECT_EQ(UnpackedFloats(packed), floats);
}

}  // namespace
