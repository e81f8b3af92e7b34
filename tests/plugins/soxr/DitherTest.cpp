// Dither through the whole convertor: where it is, and where it is not.
#include <cmath>
#include <map>

#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

constexpr int kCount = 200000;

// 24-bit samples of one value as 16-bit output.
std::vector<int> ReducedConstant(int value) {
    const CPluginUnderTest plugin;
    return Unpacked(
        ConvertAll(plugin, Held(48000, 24, 1), Held(48000, 16, 1), Packed(std::vector<int>(kCount, value), 24)), 16);
}

TEST(SoxrDither, ErrorHasNoMeanAndAConstantPowerAtEveryLevel) {
    // In steps of an eighth of the 16-bit LSB, which is 256 here.
    for (int value = -256; value <= 256; value += 32) {
        double sum = 0;
        double squares = 0;
        for (const int sample : ReducedConstant(value)) {
            const double error = sample - value / 256.0;
            sum += error;
            squares += error * error;
        }
        EXPECT_NEAR(sum / kCount, 0, 0.006) << value;
        // Rounding and two even spreads of one LSB each: 3 / 12. Evenly spread dither would vary with the level.
        EXPECT_NEAR(squares / kCount, 0.25, 0.004) << value;
    }
}

TEST(SoxrDither, ConstantHalfStepTogglesBetweenItsNeighbours) {
    std::map<int, int> counts;
    for (const int sample : ReducedConstant(128)) ++counts[sample];
    EXPECT_EQ(counts.size(), 2U);
    EXPECT_NEAR(counts[0], kCount / 2, kCount / 100);
    EXPECT_NEAR(counts[1], kCount / 2, kCount / 100);
}

TEST(SoxrDither, SilenceShowsTheTriangle) {
    std::map<int, int> counts;
    for (const int sample : ReducedConstant(0)) ++counts[sample];
    EXPECT_EQ(counts.size(), 3U);
    EXPECT_NEAR(counts[-1], kCount / 8, kCount / 100);
    EXPECT_NEAR(counts[0], kCount * 3 / 4, kCount / 100);
    EXPECT_NEAR(counts[1], kCount / 8, kCount / 100);
}

TEST(SoxrDither, ExtremesSaturateInsteadOfWrapping) {
    for (const int sample : ReducedConstant(0x7FFFFF)) ASSERT_GE(sample, 32766);
    for (const int sample : ReducedConstant(-0x800000)) ASSERT_LE(sample, -32767);
}

struct SDitherCase {
    SHeldWavFormat m_from;
    SHeldWavFormat m_to;
    bool m_bDithers;
};

// 8-bit silence is 128, wider silence 0.
bool IsSilence(const CBytes& bytes, int bits) {
    const unsigned char silence = bits == 8 ? 128 : 0;
    return std::all_of(bytes.begin(), bytes.end(), [&](unsigned char byte) { return byte == silence; });
}

TEST(SoxrDither, IsThereExactlyWhereTheTargetMayBeTooNarrowAndHasAtMost16Bits) {
    const SDitherCase cases[] = {
        {Held(48000, 24, 2), Held(48000, 16, 2), true},  {Held(48000, 32, 2), Held(48000, 16, 2), true},
        {Held(48000, 16, 2), Held(48000, 8, 2), true},   {Held(44100, 16, 2), Held(48000, 16, 2), true},
        {Held(44100, 8, 2), Held(48000, 8, 2), true},    {Held(44100, 8, 2), Held(48000, 16, 2), true},
        {Held(48000, 16, 2), Held(48000, 16, 1), true},  {Held(48000, 8, 2), Held(48000, 8, 1), true},
        {Held(48000, 16, 1), Held(48000, 16, 2), false}, {Held(48000, 8, 2), Held(48000, 16, 2), false},
        {Held(48000, 8, 2), Held(48000, 16, 1), false},  {Held(48000, 16, 2), Held(48000, 24, 2), false},
        {Held(44100, 16, 2), Held(48000, 24, 2), false}, {Held(48000, 32, 2), Held(48000, 24, 2), false},
        {Held(44100, 24, 2), Held(48000, 32, 2), false}, {Held(48000, 24, 2), Held(48000, 24, 1), false},
    };
    const CPluginUnderTest plugin;
    for (const SDitherCase& entry : cases) {
        const SWavFormat& from = entry.m_from.m_format;
        const SWavFormat& to = entry.m_to.m_format;
        const CBytes silence(static_cast<std::size_t>(BlockSizeOf(from)) * 5000, from.nBitsPerSample == 8 ? 128 : 0);
        const CBytes output = ConvertAll(plugin, entry.m_from, entry.m_to, silence);
        EXPECT_NE(IsSilence(output, to.nBitsPerSample), entry.m_bDithers)
            << from.nSampleRate << '/' << from.nBitsPerSample << '/' << from.nChannels << " to " << to.nSampleRate
            << '/' << to.nBitsPerSample << '/' << to.nChannels;
    }
}

TEST(SoxrDither, IsTheSameInEachRun) {
    const CPluginUnderTest plugin;
    const CBytes input = RandomBytes(30000);
    EXPECT_EQ(ConvertAll(plugin, Held(48000, 24, 2), Held(48000, 16, 2), input),
              ConvertAll(plugin, Held(48000, 24, 2), Held(48000, 16, 2), input));
}

}  // namespace
