// Changes of width alone.
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

TEST(SoxrWidth, SameWidthPassesBitExactly) {
    const CPluginUnderTest plugin;
    for (const int bits : {8, 16, 24, 32}) {
        for (int channels = 1; channels <= 8; ++channels) {
            const CBytes input = RandomBytes(static_cast<std::size_t>(bits * channels) * 700);
            EXPECT_EQ(ConvertAll(plugin, Held(48000, bits, channels), Held(48000, bits, channels), input), input)
                << bits << ", " << channels;
        }
    }
}

TEST(SoxrWidth, WideningIsExact) {
    const CPluginUnderTest plugin;
    const std::vector<int> samples{0, 1, -1, 0x1234, -0x1234, 32767, -32768};
    std::vector<int> in24;
    std::vector<int> in32;
    for (const int sample : samples) in24.push_back(sample * 256);
    for (const int sample : samples) in32.push_back(sample * 65536);
    EXPECT_EQ(ConvertAll(plugin, Held(48000, 16, 1), Held(48000, 24, 1), Packed(samples, 16)), Packed(in24, 24));
    EXPECT_EQ(ConvertAll(plugin, Held(48000, 16, 1), Held(48000, 32, 1), Packed(samples, 16)), Packed(in32, 32));
    EXPECT_EQ(ConvertAll(plugin, Held(48000, 24, 1), Held(48000, 32, 1), Packed(in24, 24)), Packed(in32, 32));
}

TEST(SoxrWidth, EightBitSamplesAreUnsigned) {
    const CPluginUnderTest plugin;
    const CBytes input{0, 1, 127, 128, 129, 255};
    EXPECT_EQ(Unpacked(ConvertAll(plugin, Held(48000, 8, 1), Held(48000, 16, 1), input), 16),
              (std::vector<int>{-32768, -127 * 256, -256, 0, 256, 127 * 256}));
}

TEST(SoxrWidth, WideningAndRoundingBackIsTheIdentity) {
    const CPluginUnderTest plugin;
    const CBytes in24 = RandomBytes(3 * 8000);
    const CBytes in32 = ConvertAll(plugin, Held(48000, 24, 2), Held(48000, 32, 2), in24);
    EXPECT_EQ(ConvertAll(plugin, Held(48000, 32, 2), Held(48000, 24, 2), in32), in24);
}

TEST(SoxrWidth, WideningAndDitheringBackStaysWithinOneStep) {
    const CPluginUnderTest plugin;
    const CBytes in16 = RandomBytes(2 * 8000);
    const CBytes in24 = ConvertAll(plugin, Held(48000, 16, 2), Held(48000, 24, 2), in16);
    const auto before = Unpacked(in16, 16);
    const auto after = Unpacked(ConvertAll(plugin, Held(48000, 24, 2), Held(48000, 16, 2), in24), 16);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t at = 0; at < before.size(); ++at) ASSERT_NEAR(after[at], before[at], 1) << at;
}

TEST(SoxrWidth, ReductionTo24BitsRoundsAndSaturates) {
    const CPluginUnderTest plugin;
    const std::vector<int> input{0x7F, 0x80, -0x80, -0x81, INT32_MAX, INT32_MIN};
    EXPECT_EQ(Unpacked(ConvertAll(plugin, Held(48000, 32, 1), Held(48000, 24, 1), Packed(input, 32)), 24),
              (std::vector<int>{0, 1, 0, -1, 0x7FFFFF, -0x800000}));
}

TEST(SoxrWidth, ReductionToEightBitsKeepsTheMiddleAt128AndSaturates) {
    const CPluginUnderTest plugin;
    const auto reduce = [&](int value) {
        return ConvertAll(plugin, Held(48000, 16, 1), Held(48000, 8, 1), Packed(std::vector<int>(5000, value), 16));
    };
    for (const unsigned char sample : reduce(0)) ASSERT_NEAR(sample, 128, 1);
    for (const unsigned char sample : reduce(32767)) ASSERT_GE(sample, 254);
    for (const unsigned char sample : reduce(-32768)) ASSERT_LE(sample, 1);
}

}  // namespace
