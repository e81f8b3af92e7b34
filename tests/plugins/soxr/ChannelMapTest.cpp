// Between mono and stereo.
#include "plugins/soxr/ChannelMap.h"
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

TEST(SoxrChannelMap, MeanOfTheExtremesDoesNotOverflow) {
    std::int32_t samples[] = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MAX};
    AverageToMono(samples, 3);
    EXPECT_EQ(samples[0], INT32_MAX);
    EXPECT_EQ(samples[1], INT32_MIN);
    EXPECT_EQ(samples[2], -1);
}

TEST(SoxrChannelMap, DuplicatesInPlaceFromTheEnd) {
    std::int32_t samples[] = {1, 2, 3, 0, 0, 0};
    DuplicateToStereo(samples, 3);
    const std::int32_t expected[] = {1, 1, 2, 2, 3, 3};
    EXPECT_TRUE(std::equal(std::begin(samples), std::end(samples), std::begin(expected)));
}

TEST(SoxrChannelMap, MonoBecomesTwoEqualChannels) {
    const CPluginUnderTest plugin;
    const CBytes mono = Packed({5, -7, 32767, -32768}, 16);
    const CBytes stereo = ConvertAll(plugin, Held(48000, 16, 1), Held(48000, 16, 2), mono);
    EXPECT_EQ(Unpacked(stereo, 16), (std::vector<int>{5, 5, -7, -7, 32767, 32767, -32768, -32768}));
}

TEST(SoxrChannelMap, ResampledAndDitheredMonoStillHasTwoEqualChannels) {
    const CPluginUnderTest plugin;
    const CBytes mono = RandomBytes(3 * 5000);
    const auto stereo = Unpacked(ConvertAll(plugin, Held(44100, 24, 1), Held(48000, 16, 2), mono), 16);
    ASSERT_FALSE(stereo.empty());
    for (std::size_t at = 0; at < stereo.size(); at += 2) ASSERT_EQ(stereo[at], stereo[at + 1]);
}

TEST(SoxrChannelMap, StereoBecomesTheExactMeanWhereTheTargetHoldsIt) {
    const CPluginUnderTest plugin;
    const CBytes stereo = Packed({100, 300, 1, 2, -1, -2, 32767, -32768}, 16);
    const CBytes mono = ConvertAll(plugin, Held(48000, 16, 2), Held(48000, 24, 1), stereo);
    EXPECT_EQ(Unpacked(mono, 24), (std::vector<int>{200 * 256, 384, -384, -128}));
}

TEST(SoxrChannelMap, EightChannelsKeepTheirOrderThroughAResampler) {
    const CPluginUnderTest plugin;
    std::vector<int> samples;
    for (int frame = 0; frame < 20000; ++frame) {
        for (int channel = 0; channel < 8; ++channel) samples.push_back((channel - 3) * 500000);
    }
    const auto output = Unpacked(ConvertAll(plugin, Held(44100, 24, 8), Held(48000, 24, 8), Packed(samples, 24)), 24);
    const std::size_t middle = output.size() / 16 * 8;
    for (int channel = 0; channel < 8; ++channel) {
        EXPECT_NEAR(output[middle + static_cast<std::size_t>(channel)], (channel - 3) * 500000, 20) << channel;
    }
}

}  // namespace
