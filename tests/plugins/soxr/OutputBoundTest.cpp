// The convertor driven as a converting source drives it: no block is ever longer than the caller's buffer.
#include "plugins/soxr/ConversionPlan.h"
#include "tests/plugins/soxr/PluginUnderTest.h"
#include "tests/support/ConvertingRead.h"

namespace {

struct SLayout {
    int m_nFromBits;
    int m_nFromChannels;
    int m_nToBits;
    int m_nToChannels;
};

constexpr SLayout kLayouts[] = {{8, 1, 8, 1},   {8, 1, 32, 2},  {16, 2, 16, 2}, {16, 2, 24, 1},
                                {24, 2, 16, 2}, {24, 8, 8, 8},  {32, 2, 24, 2}, {32, 2, 8, 1},
                                {16, 8, 24, 8}, {32, 8, 32, 8}, {16, 6, 24, 2}, {24, 8, 16, 1}};

// Reads until nothing more comes, with a buffer of `size` bytes; returns the frames that arrived.
std::uint64_t ReadAll(IAudioConvertor& convertor, const SWavFormat& from, const SWavFormat& to, int size,
                      CBytes input) {
    std::uint64_t bytes = 0;
    std::size_t at = 0;
    for (;;) {
        const std::size_t request = static_cast<std::size_t>(ConvertingReadRequest(from, to, size));
        const std::size_t read = std::min(request, input.size() - at);
        EXPECT_TRUE(convertor.Convert(input.data() + at, static_cast<int>(read), 0, nullptr));
        at += read;
        const int length = convertor.GetOutputLength();
        EXPECT_LE(length, size);
        EXPECT_EQ(length % BlockSizeOf(to), 0);
        bytes += static_cast<unsigned>(length);
        if (::testing::Test::HasFailure() || (read == 0 && length == 0)) break;
    }
    return bytes / static_cast<unsigned>(BlockSizeOf(to));
}

void ExpectBounded(const CPluginUnderTest& plugin, const SConversionPlan& plan, int size, unsigned seed) {
    const SWavFormat& from = plan.m_from.m_format;
    const SWavFormat& to = plan.m_to.m_format;
    const int request = ConvertingReadRequest(from, to, size);
    if (request < kSmallestConvertingRead || size < BlockSizeOf(to)) return;
    const auto convertor = plugin.Create(plan.m_from, plan.m_to);
    ASSERT_TRUE(convertor);
    const std::size_t frameBytes = static_cast<std::size_t>(BlockSizeOf(from));
    const std::size_t bytes = static_cast<std::size_t>(request) * (3 + seed % 20) + seed % 1000;
    const std::size_t frames = std::min<std::size_t>(bytes / frameBytes, 30000);
    EXPECT_EQ(ReadAll(*convertor, from, to, size, RandomBytes(frames * frameBytes, seed)), plan.OutputFrames(frames));
}

TEST(SoxrOutputBound, EveryReadFitsTheCallersBufferAndNothingIsLost) {
    const CPluginUnderTest plugin;
    std::mt19937 random(7);
    for (const int fromRate : kRates) {
        for (const int toRate : kRates) {
            for (const SLayout& layout : kLayouts) {
                const SConversionPlan plan{Held(fromRate, layout.m_nFromBits, layout.m_nFromChannels),
                                           Held(toRate, layout.m_nToBits, layout.m_nToChannels)};
                const int sizes[] = {40 + static_cast<int>(random() % 500), 1024 + static_cast<int>(random() % 64),
                                     4096, static_cast<int>(random() % 300000)};
                ExpectBounded(plugin, plan, sizes[random() % 4], static_cast<unsigned>(random()));
                ASSERT_FALSE(HasFailure())
                    << fromRate << " to " << toRate << ", " << layout.m_nFromBits << '/' << layout.m_nFromChannels
                    << " to " << layout.m_nToBits << '/' << layout.m_nToChannels;
            }
        }
    }
}

TEST(SoxrOutputBound, BuffersOfAllSmallSizesFit) {
    const CPluginUnderTest plugin;
    for (int size = 40; size < 400; size += 3) {
        ExpectBounded(plugin, {Held(44100, 16, 2), Held(48000, 24, 2)}, size, 100);
        ExpectBounded(plugin, {Held(48000, 24, 2), Held(44100, 16, 2)}, size, 200);
        ExpectBounded(plugin, {Held(8000, 8, 1), Held(192000, 32, 2)}, size, 300);
        ASSERT_FALSE(HasFailure()) << size;
    }
}

TEST(SoxrOutputBound, OutputFlowsWhileInputFlows) {
    const CPluginUnderTest plugin;
    for (const int fromRate : kRates) {
        for (const int toRate : kRates) {
            const SConversionPlan plan{Held(fromRate, 16, 8), Held(toRate, 32, 8)};
            const auto convertor = plugin.Create(plan.m_from, plan.m_to);
            const int size = 32 * 64 + 16;
            const int request = ConvertingReadRequest(plan.m_from.m_format, plan.m_to.m_format, size);
            CBytes block = RandomBytes(static_cast<std::size_t>(request));
            std::uint64_t made = 0;
            const unsigned calls = 2000;
            for (unsigned call = 0; call < calls; ++call) {
                ASSERT_TRUE(convertor->Convert(block.data(), request, 0, nullptr));
                made += static_cast<unsigned>(convertor->GetOutputLength()) / 32;
            }
            const std::uint64_t worth = plan.OutputFrames(static_cast<unsigned>(request) * calls / 16);
            // Held back: the resampler's own delay, and part of a frame in each call.
            EXPECT_GE(made + calls + 40000, worth) << fromRate << " to " << toRate;
        }
    }
}

}  // namespace
