// How many samples were limited to the range of the output.
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

std::uint64_t ClippedBy(const CPluginUnderTest& plugin, const SHeldWavFormat& from, const SHeldWavFormat& to,
                        const CBytes& input) {
    const auto convertor = plugin.Create(from, to);
    ConvertAll(*convertor, input);
    return ClippedSamples(*convertor);
}

TEST(SoxrClipping, EachSampleBeyondFullScaleCountsOnce) {
    const CPluginUnderTest plugin;
    const CBytes input = PackedFloats({0.5F, 1.5F, -2.0F, 0.0F, 1e30F, -0.999F});
    for (const char* const dither : {"none", "rectangular", "triangular", "shaped"}) {
        plugin.Set("dither", dither);
        for (const int bits : {8, 16, 24, 32}) {
            EXPECT_EQ(ClippedBy(plugin, HeldFloat(48000, 2), Held(48000, bits, 2), input), 3U) << dither << bits;
        }
    }
}

TEST(SoxrClipping, FullScaleItselfIsNotClipped) {
    const CPluginUnderTest plugin;
    const CBytes floats = PackedFloats(std::vector<float>(5000, 1.0F));
    const CBytes lowest = PackedFloats(std::vector<float>(5000, -1.0F));
    const CBytes highest24 = Packed(std::vector<int>(5000, 0x7FFFFF), 24);
    for (const int bits : {8, 16}) {
        EXPECT_EQ(ClippedBy(plugin, HeldFloat(48000, 1), Held(48000, bits, 1), floats), 0U);
        EXPECT_EQ(ClippedBy(plugin, HeldFloat(48000, 1), Held(48000, bits, 1), lowest), 0U);
        EXPECT_EQ(ClippedBy(plugin, Held(48000, 24, 1), Held(48000, bits, 1), highest24), 0U);
    }
}

TEST(SoxrClipping, FloatTargetsClipNothing) {
    const CPluginUnderTest plugin;
    EXPECT_EQ(ClippedBy(plugin, HeldFloat(48000, 1), HeldFloat(48000, 1), PackedFloats({9.0F, -9.0F})), 0U);
}

TEST(SoxrClipping, DoubledSamplesCountInBothChannels) {
    const CPluginUnderTest plugin;
    EXPECT_EQ(ClippedBy(plugin, HeldFloat(48000, 1), Held(48000, 16, 2), PackedFloats({2.0F, 0.0F})), 2U);
}

TEST(SoxrClipping, RingingOfAResampledSquareWaveCountsAtEveryQuality) {
    const CPluginUnderTest plugin;
    plugin.Set("dither", "none");
    std::vector<int> square;
    for (int at = 0; at < 20000; ++at) square.push_back(at / 40 % 2 == 0 ? 32767 : -32768);
    std::vector<int> quiet;
    for (const int sample : square) quiet.push_back(sample / 2);
    for (const char* const quality : {"quick", "high", "very-high"}) {
        plugin.Set("quality", quality);
        for (const int bits : {16, 24, 32}) {
            const auto convertor = plugin.Create(Held(44100, 16, 1), Held(96000, bits, 1));
            const auto output = Unpacked(ConvertAll(*convertor, Packed(square, 16)), bits);
            const int highest = INT32_MAX >> (32 - bits);
            const auto atTheLimits = std::count_if(
                output.begin(), output.end(), [&](int sample) { return sample == highest || sample == -highest - 1; });
            EXPECT_GT(ClippedSamples(*convertor), 1000U) << quality << bits;
            EXPECT_LE(ClippedSamples(*convertor), static_cast<std::uint64_t>(atTheLimits)) << quality << bits;
            EXPECT_EQ(ClippedBy(plugin, Held(44100, 16, 1), Held(96000, bits, 1), Packed(quiet, 16)), 0U);
        }
    }
}

TEST(SoxrClipping, CountGoesOnOverAFreshStream) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(HeldFloat(48000, 1), Held(48000, 16, 1));
    const CBytes input = PackedFloats({2.0F});
    ConvertAll(*convertor, input);
    ConvertAll(*convertor, input);
    EXPECT_EQ(ClippedSamples(*convertor), 2U);
}

}  // namespace
