// Channels kept, doubled and mixed down.
#include <cmath>
#include <numeric>

#include "plugins/soxr/ChannelMap.h"
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

const double kHalfPower = std::sqrt(0.5);

// What full scale in each channel alone, one after the other, becomes in the channels of the target.
std::vector<std::vector<float>> ResponseOf(int from, int to) {
    const CPluginUnderTest plugin;
    std::vector<float> input;
    for (int frame = 0; frame < from; ++frame) {
        for (int channel = 0; channel < from; ++channel) input.push_back(channel == frame ? 1.0F : 0.0F);
    }
    const auto output =
        UnpackedFloats(ConvertAll(plugin, HeldFloat(48000, from), HeldFloat(48000, to), PackedFloats(input)));
    std::vector<std::vector<float>> response;
    for (std::size_t at = 0; at < output.size(); at += static_cast<std::size_t>(to)) {
        response.emplace_back(output.begin() + static_cast<std::ptrdiff_t>(at),
                              output.begin() + static_cast<std::ptrdiff_t>(at) + to);
    }
    return response;
}

struct SStereoMix {
    std::vector<double> m_left;  // of each channel, before they are scaled
    std::vector<double> m_right;
};

// For 3 to 8 channels.
const SStereoMix kStereoMixes[] = {
    {{1, 0, kHalfPower}, {0, 1, kHalfPower}},
    {{1, 0, kHalfPower, 0}, {0, 1, 0, kHalfPower}},
    {{1, 0, kHalfPower, kHalfPower, 0}, {0, 1, kHalfPower, 0, kHalfPower}},
    {{1, 0, kHalfPower, 0, kHalfPower, 0}, {0, 1, kHalfPower, 0, 0, kHalfPower}},
    {{1, 0, kHalfPower, 0, 0.5, kHalfPower, 0}, {0, 1, kHalfPower, 0, 0.5, 0, kHalfPower}},
    {{1, 0, kHalfPower, 0, kHalfPower, 0, kHalfPower, 0}, {0, 1, kHalfPower, 0, 0, kHalfPower, 0, kHalfPower}},
};

TEST(SoxrChannelMap, DownMixToStereoHasTheGainsOfBS775ScaledToASumOfOne) {
    for (const SStereoMix& mix : kStereoMixes) {
        const std::size_t channels = mix.m_left.size();
        const double sum = std::accumulate(mix.m_left.begin(), mix.m_left.end(), 0.0);
        const auto response = ResponseOf(static_cast<int>(channels), 2);
        ASSERT_EQ(response.size(), channels);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            EXPECT_NEAR(response[channel][0], mix.m_left[channel] / sum, 1e-6) << channels << ", " << channel;
            EXPECT_NEAR(response[channel][1], mix.m_right[channel] / sum, 1e-6) << channels << ", " << channel;
        }
    }
}

TEST(SoxrChannelMap, DownMixToMonoIsTheMeanOfTheDownMixToStereo) {
    for (int channels = 2; channels <= 8; ++channels) {
        const auto stereo = ResponseOf(channels, 2);
        const auto mono = ResponseOf(channels, 1);
        for (std::size_t channel = 0; channel < stereo.size(); ++channel) {
            EXPECT_NEAR(mono[channel][0], (stereo[channel][0] + stereo[channel][1]) / 2, 1e-6) << channels;
        }
    }
}

TEST(SoxrChannelMap, FullScaleInAllChannelsDoesNotClip) {
    const CPluginUnderTest plugin;
    for (int channels = 2; channels <= 8; ++channels) {
        for (int to = 1; to <= 2; ++to) {
            for (const int level : {32767, -32768}) {
                const auto convertor = plugin.Create(Held(48000, 16, channels), Held(48000, 16, to));
                const std::vector<int> input(static_cast<std::size_t>(channels) * 500, level);
                const auto output = Unpacked(ConvertAll(*convertor, Packed(input, 16)), 16);
                ASSERT_EQ(output.size(), 500U * static_cast<unsigned>(to));
                for (const int sample : output) ASSERT_NEAR(sample, level, 2) << channels;
                EXPECT_EQ(ClippedSamples(*convertor), 0U);
            }
        }
    }
}

TEST(SoxrChannelMap, GainsOfOneOutputSumToOne) {
    for (int from = 2; from <= 8; ++from) {
        for (int to = 1; to <= 2 && to < from; ++to) {
            for (const CMixGains& gains : DownMixGains(from, to)) {
                EXPECT_NEAR(std::accumulate(gains.begin(), gains.end(), 0.0), 1, 1e-12) << from << " to " << to;
            }
        }
    }
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

TEST(SoxrChannelMap, MeanOfTheExtremesDoesNotOverflow) {
    const CPluginUnderTest plugin;
    const CBytes stereo = Packed({INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN, INT32_MIN, INT32_MAX}, 32);
    const CBytes mono = ConvertAll(plugin, Held(48000, 32, 2), Held(48000, 32, 1), stereo);
    // -1/2 rounds up.
    EXPECT_EQ(Unpacked(mono, 32), (std::vector<int>{INT32_MAX, INT32_MIN, 0}));
}

TEST(SoxrChannelMap, ChannelsKeepTheirOrderThroughAResampler) {
    const CPluginUnderTest plugin;
    for (int channels = 1; channels <= 8; ++channels) {
        std::vector<int> samples;
        for (int frame = 0; frame < 20000; ++frame) {
            for (int channel = 0; channel < channels; ++channel) samples.push_back((channel - 3) * 500000);
        }
        const auto output =
            Unpacked(ConvertAll(plugin, Held(44100, 24, channels), Held(48000, 24, channels), Packed(samples, 24)), 24);
        const auto count = static_cast<std::size_t>(channels);
        const std::size_t middle = output.size() / count / 2 * count;
        for (int channel = 0; channel < channels; ++channel) {
            EXPECT_NEAR(output[middle + static_cast<std::size_t>(channel)], (channel - 3) * 500000, 20) << channel;
        }
    }
}

TEST(SoxrChannelMap, MixedDownAndResampledIsResampledAndMixedDown) {
    const CPluginUnderTest plugin;
    const CBytes input = Packed(
        [] {
            std::vector<int> samples;
            std::mt19937 random(5);
            for (int i = 0; i < 6 * 9000; ++i) samples.push_back(static_cast<int>(random() % 8000000) - 4000000);
            return samples;
        }(),
        24);
    const auto at48000 = ConvertAll(plugin, Held(44100, 24, 6), HeldFloat(48000, 6), input);
    const auto expected = UnpackedFloats(ConvertAll(plugin, HeldFloat(48000, 6), HeldFloat(48000, 2), at48000));
    const auto output = UnpackedFloats(ConvertAll(plugin, Held(44100, 24, 6), HeldFloat(48000, 2), input));
    ASSERT_EQ(output.size(), expected.size());
    for (std::size_t at = 0; at < output.size(); ++at) ASSERT_NEAR(output[at], expected[at], 1e-6) << at;
}

}  // namespace
