// The output is as long as the input, to the frame.
#include "plugins/soxr/ConversionPlan.h"
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

void ExpectLength(const CPluginUnderTest& plugin, int fromRate, int toRate, std::size_t frames, unsigned seed) {
    const auto convertor = plugin.Create(Held(fromRate, 16, 2), Held(toRate, 24, 2));
    ASSERT_TRUE(convertor);
    std::mt19937 random(seed);
    const CBytes output = ConvertInBlocks(*convertor, RandomBytes(frames * 4), [&] { return 1 + random() % 9000; });
    // Exact quotient, halves up, in integers.
    const std::size_t from = static_cast<std::size_t>(fromRate);
    const std::size_t expected = frames * static_cast<std::size_t>(toRate) / from +
                                 (frames * static_cast<std::size_t>(toRate) % from * 2 >= from ? 1 : 0);
    EXPECT_EQ(output.size() % 6, 0U);
    EXPECT_EQ(output.size() / 6, expected) << frames << " frames, " << fromRate << " to " << toRate;
}

TEST(SoxrOutputLength, IsTheExactQuotientForEveryPairOfRates) {
    const CPluginUnderTest plugin;
    unsigned seed = 0;
    for (const int fromRate : kRates) {
        for (const int toRate : kRates) {
            for (const std::size_t frames : {1U, 2U, 7U, 12U, 120U, 240U, 480U, 1001U, 4410U, 30011U}) {
                ExpectLength(plugin, fromRate, toRate, frames, ++seed);
            }
        }
    }
}

TEST(SoxrOutputLength, HoldsForRatesWithoutACommonMeasure) {
    const CPluginUnderTest plugin;
    unsigned seed = 1000;
    const int pairs[][2] = {{44101, 44100}, {44100, 44101},   {1, 768}, {768, 1},
                            {12345, 54321}, {767999, 768000}, {7, 3},   {768000, 1}};
    for (const auto& pair : pairs) {
        for (const std::size_t frames : {1U, 7U, 5000U}) ExpectLength(plugin, pair[0], pair[1], frames, ++seed);
    }
}

TEST(SoxrOutputLength, HalvesRoundUp) {
    const SConversionPlan halving{Held(96000, 16, 2), Held(48000, 16, 2)};
    EXPECT_EQ(halving.OutputFrames(0), 0U);
    EXPECT_EQ(halving.OutputFrames(1), 1U);
    EXPECT_EQ(halving.OutputFrames(2), 1U);
    EXPECT_EQ(halving.OutputFrames(3), 2U);
}

TEST(SoxrOutputLength, IsExactForStreamsOfManyHours) {
    const SConversionPlan plan{Held(44100, 16, 2), Held(48000, 16, 2)};
    EXPECT_EQ(plan.OutputFrames(44100ULL * 3600 * 1000), 48000ULL * 3600 * 1000);
    EXPECT_EQ(plan.OutputFrames(44100ULL * 3600 * 1000 + 1), 48000ULL * 3600 * 1000 + 1);
}

TEST(SoxrOutputLength, EmptyInputHasNoOutput) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(Held(44100, 16, 2), Held(48000, 24, 2));
    EXPECT_TRUE(ConvertAll(*convertor, {}).empty());
}

}  // namespace
