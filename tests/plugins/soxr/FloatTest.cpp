// Float samples in and out.
#include <cmath>
#include <limits>

#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

std::vector<float> RandomFloats(std::size_t count) {
    std::mt19937 random(9);
    std::uniform_real_distribution<float> even(-0.9F, 0.9F);
    std::vector<float> samples(count);
    std::generate(samples.begin(), samples.end(), [&] { return even(random); });
    return samples;
}

TEST(SoxrFloat, FloatsPassBitExactlyWhereNothingIsToBeDone) {
    const CPluginUnderTest plugin;
    const CBytes input = PackedFloats({0.0F, 1.0F, -1.0F, 0.1F, 3.5F, -1e30F, 1e-40F});
    EXPECT_EQ(ConvertAll(plugin, HeldFloat(48000, 1), HeldFloat(48000, 1), input), input);
}

TEST(SoxrFloat, FullScaleOfIntegersIsOne) {
    const CPluginUnderTest plugin;
    const std::vector<float> expected{-1.0F, -0.5F, 0.0F, 0.25F};
    EXPECT_EQ(UnpackedFloats(ConvertAll(plugin, Held(48000, 8, 1), HeldFloat(48000, 1), {0, 64, 128, 160})), expected);
    for (const int bits : {16, 24, 32}) {
        const std::vector<int> samples{INT32_MIN >> (32 - bits), INT32_MIN >> (33 - bits), 0, 1 << (bits - 3)};
        EXPECT_EQ(UnpackedFloats(ConvertAll(plugin, Held(48000, bits, 1), HeldFloat(48000, 1), Packed(samples, bits))),
                  expected)
            << bits;
    }
}

TEST(SoxrFloat, IntegersUpTo24BitsComeBackFromFloatsUnchanged) {
    const CPluginUnderTest plugin;
    plugin.Set("dither", "none");
    for (const int bits : {8, 16, 24}) {
        const CBytes input = RandomBytes(6000);
        const CBytes floats = ConvertAll(plugin, Held(48000, bits, 2), HeldFloat(48000, 2), input);
        EXPECT_EQ(ConvertAll(plugin, HeldFloat(48000, 2), Held(48000, bits, 2), floats), input) << bits;
    }
}

TEST(SoxrFloat, ReductionToIntegersRoundsAndSaturates) {
    const CPluginUnderTest plugin;
    const float step = 1.0F / 8388608.0F;
    const CBytes input = PackedFloats({0.4F * step, 0.6F * step, -0.4F * step, -0.6F * step, 1.0F, -1.0F, 7.0F, -7.0F});
    EXPECT_EQ(Unpacked(ConvertAll(plugin, HeldFloat(48000, 1), Held(48000, 24, 1), input), 24),
              (std::vector<int>{0, 1, 0, -1, 0x7FFFFF, -0x800000, 0x7FFFFF, -0x800000}));
    EXPECT_EQ(Unpacked(ConvertAll(plugin, HeldFloat(48000, 1), Held(48000, 32, 1), PackedFloats({2.0F, -2.0F})), 32),
              (std::vector<int>{INT32_MAX, INT32_MIN}));
}

TEST(SoxrFloat, WhatIsNoNumberBecomesSilence) {
    const CPluginUnderTest plugin;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const auto convertor = plugin.Create(HeldFloat(48000, 1), Held(48000, 24, 1));
    EXPECT_EQ(Unpacked(ConvertAll(*convertor, PackedFloats({nan, infinity, -infinity, 0.5F})), 24),
              (std::vector<int>{0, 0x7FFFFF, -0x800000, 0x400000}));
    EXPECT_EQ(ClippedSamples(*convertor), 3U);
}

TEST(SoxrFloat, ResampledFloatsKeepWhatIsBeyondFullScale) {
    const CPluginUnderTest plugin;
    std::vector<float> input;
    for (int at = 0; at < 44100; ++at) input.push_back(4.0F * static_cast<float>(std::sin(0.05 * at)));
    const auto output =
        UnpackedFloats(ConvertAll(plugin, HeldFloat(44100, 1), HeldFloat(48000, 1), PackedFloats(input)));
    EXPECT_EQ(output.size(), 48000U);
    EXPECT_NEAR(*std::max_element(output.begin() + 1000, output.end() - 1000), 4, 1e-4);
}

TEST(SoxrFloat, ResampledFloatsAreTheResampledIntegers) {
    const CPluginUnderTest plugin;
    const CBytes in24 = Packed(
        [] {
            std::vector<int> samples;
            for (const float sample : RandomFloats(20000)) samples.push_back(static_cast<int>(sample * 8388607.0F));
            return samples;
        }(),
        24);
    const CBytes floats = ConvertAll(plugin, Held(44100, 24, 2), HeldFloat(44100, 2), in24);
    for (const char* const quality : {"quick", "high", "very-high"}) {
        plugin.Set("quality", quality);
        const auto fromIntegers = UnpackedFloats(ConvertAll(plugin, Held(44100, 24, 2), HeldFloat(48000, 2), in24));
        const auto fromFloats = UnpackedFloats(ConvertAll(plugin, HeldFloat(44100, 2), HeldFloat(48000, 2), floats));
        EXPECT_EQ(fromIntegers, fromFloats) << quality;
        const auto rounded = Unpacked(ConvertAll(plugin, HeldFloat(44100, 2), Held(48000, 24, 2), floats), 24);
        ASSERT_EQ(rounded.size(), fromFloats.size());
        for (std::size_t at = 0; at < rounded.size(); ++at) {
            const float limited = std::clamp(fromFloats[at], -1.0F, 1.0F);
            ASSERT_NEAR(rounded[at], limited * 8388608.0F, 1.01) << at;
        }
    }
}

TEST(SoxrFloat, LengthsAreExact) {
    const CPluginUnderTest plugin;
    const CBytes input = PackedFloats(RandomFloats(2 * 4410));
    EXPECT_EQ(ConvertAll(plugin, HeldFloat(44100, 2), HeldFloat(96000, 2), input).size(), 9600U * 8);
    EXPECT_EQ(ConvertAll(plugin, HeldFloat(44100, 2), Held(8000, 16, 1), input).size(), 800U * 2);
    EXPECT_EQ(ConvertAll(plugin, HeldFloat(44100, 2), Held(44100, 16, 1), input).size(), 4410U * 2);
}

}  // namespace
