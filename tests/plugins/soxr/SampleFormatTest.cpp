// Packed PCM to and from 32-bit samples.
#include "plugins/soxr/SampleFormat.h"
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

struct SSample {
    int m_nBits;
    CBytes m_packed;
    std::uint32_t m_nSample;
};

TEST(SoxrSampleFormat, SamplesAreLeftJustifiedLittleEndianAndEightBitsAreUnsigned) {
    const SSample table[] = {
        {8, {128}, 0},
        {8, {255}, 0x7F000000},
        {8, {0}, 0x80000000},
        {8, {129}, 0x01000000},
        {16, {0x34, 0x12}, 0x12340000},
        {16, {0x00, 0x80}, 0x80000000},
        {16, {0xFF, 0xFF}, 0xFFFF0000},
        {24, {0x56, 0x34, 0x12}, 0x12345600},
        {24, {0xFF, 0xFF, 0x7F}, 0x7FFFFF00},
        {32, {0x78, 0x56, 0x34, 0x12}, 0x12345678},
        {32, {0x01, 0x00, 0x00, 0x80}, 0x80000001},
    };
    for (const SSample& entry : table) {
        std::int32_t sample = 0;
        UnpackSamples(entry.m_packed.data(), 1, entry.m_nBits, &sample);
        EXPECT_EQ(static_cast<std::uint32_t>(sample), entry.m_nSample) << entry.m_nBits;
        CBytes packed(entry.m_packed.size());
        PackSamples(&sample, 1, entry.m_nBits, packed.data());
        EXPECT_EQ(packed, entry.m_packed) << entry.m_nBits;
    }
}

TEST(SoxrSampleFormat, PackingUndoesUnpackingAtEveryWidth) {
    for (const int bits : {8, 16, 24, 32}) {
        const CBytes packed = RandomBytes(12000);
        const std::size_t count = packed.size() * 8 / static_cast<std::size_t>(bits);
        std::vector<std::int32_t> samples(count);
        UnpackSamples(packed.data(), count, bits, samples.data());
        CBytes again(packed.size());
        PackSamples(samples.data(), count, bits, again.data());
        EXPECT_EQ(again, packed) << bits;
    }
}

}  // namespace
