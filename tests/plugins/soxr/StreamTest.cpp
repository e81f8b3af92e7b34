// The stream's life: pieces of frames, the tail after the end, a new start.
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

const SHeldWavFormat kFrom = Held(44100, 24, 2);
const SHeldWavFormat kTo = Held(48000, 16, 2);

TEST(SoxrStream, BlocksOfAnySizeGiveTheSameOutput) {
    const CPluginUnderTest plugin;
    const SHeldWavFormat froms[] = {Held(44100, 24, 2), Held(44100, 24, 8), Held(48000, 16, 8), Held(96000, 32, 1)};
    const SHeldWavFormat tos[] = {Held(48000, 16, 2), Held(48000, 32, 8), Held(48000, 8, 8), Held(44100, 24, 1)};
    for (std::size_t i = 0; i < std::size(froms); ++i) {
        const CBytes input = RandomBytes(48 * 1000);
        const CBytes expected = ConvertAll(plugin, froms[i], tos[i], input);
        ASSERT_FALSE(expected.empty());
        for (const std::size_t block : {1U, 5U, 7U, 23U, 1000U, 12345U}) {
            const auto convertor = plugin.Create(froms[i], tos[i]);
            EXPECT_EQ(ConvertInBlocks(*convertor, input, [&] { return block; }), expected) << i << ", " << block;
        }
    }
}

TEST(SoxrStream, FrameBegunBeforeTheEndIsDropped) {
    const CPluginUnderTest plugin;
    CBytes input = RandomBytes(6 * 10);
    const CBytes expected = ConvertAll(plugin, kFrom, Held(44100, 32, 2), input);
    input.insert(input.end(), {1, 2, 3, 4, 5});
    EXPECT_EQ(ConvertAll(plugin, kFrom, Held(44100, 32, 2), input), expected);
}

TEST(SoxrStream, TailComesInPiecesNoLongerThanTheLastCallWasAllowed) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(kFrom, kTo);
    CBytes block = RandomBytes(1200);
    CBytes output;
    for (int call = 0; call < 100; ++call) {
        ASSERT_TRUE(convertor->Convert(block.data(), 1200, 0, nullptr));
        AppendOutput(*convertor, output);
    }
    // 200 frames in are 217.7 frames out, and 15 bytes of headroom are 3 frames.
    int pieces = 0;
    do {
        ASSERT_TRUE(convertor->Convert(nullptr, 0, 0, nullptr));
        ASSERT_LE(convertor->GetOutputLength(), 221 * 4);
        AppendOutput(*convertor, output);
        ++pieces;
    } while (convertor->GetOutputLength() != 0);
    EXPECT_GT(pieces, 2);
    EXPECT_EQ(output.size(), 21769U * 4);
    ASSERT_TRUE(convertor->Convert(nullptr, 0, 0, nullptr));
    EXPECT_EQ(convertor->GetOutputLength(), 0);
}

TEST(SoxrStream, ShortLastBlockDoesNotStopTheTail) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(Held(192000, 32, 8), Held(8000, 32, 8));
    CBytes input = RandomBytes(32 * 4800);
    CBytes output;
    ASSERT_TRUE(convertor->Convert(input.data(), static_cast<int>(input.size()) - 1, 0, nullptr));
    AppendOutput(*convertor, output);
    ASSERT_TRUE(convertor->Convert(&input.back(), 1, 0, nullptr));
    AppendOutput(*convertor, output);
    Drain(*convertor, output);
    EXPECT_EQ(output.size(), 200U * 32);
}

TEST(SoxrStream, BytesAfterTheEndBeginAFreshStream) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(kFrom, kTo);
    const CBytes first = RandomBytes(6 * 3000, 1);
    const CBytes second = RandomBytes(6 * 5000, 2);
    const CBytes expected = ConvertAll(plugin, kFrom, kTo, second);
    ConvertAll(*convertor, first);
    EXPECT_EQ(ConvertAll(*convertor, second), expected);
    EXPECT_EQ(ConvertAll(*convertor, second), expected);
}

TEST(SoxrStream, FrameThatTheResamplerCountsShortIsTheSameInAFreshStream) {
    const CPluginUnderTest plugin;
    const SHeldWavFormat from = Held(48000, 24, 1);
    const SHeldWavFormat to = Held(44100, 24, 1);
    // 240 frames are 220.5 frames at the other rate, of which libsoxr 0.1.3 makes 220.
    const CBytes halfFrame = Packed(std::vector<int>(240, 4000000), 24);
    const auto convertor = plugin.Create(from, to);
    ConvertAll(*convertor, Packed(std::vector<int>(5000, 4000000), 24));
    const CBytes output = ConvertAll(*convertor, halfFrame);
    EXPECT_EQ(output.size(), 221U * 3);
    EXPECT_EQ(output, ConvertAll(plugin, from, to, halfFrame));
}

TEST(SoxrStream, FreshStreamBeginsAlsoWhileTheTailIsStillWaiting) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(kFrom, kTo);
    CBytes first = RandomBytes(6 * 3000 + 1, 1);
    const CBytes second = RandomBytes(6 * 5000, 2);
    ASSERT_TRUE(convertor->Convert(first.data(), static_cast<int>(first.size()), 0, nullptr));
    ASSERT_TRUE(convertor->Convert(nullptr, 0, 0, nullptr));
    ASSERT_NE(convertor->GetOutputLength(), 0);
    EXPECT_EQ(ConvertAll(*convertor, second), ConvertAll(plugin, kFrom, kTo, second));
}

TEST(SoxrStream, EndWithoutBytesBeforeItChangesNothing) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(kFrom, kTo);
    const CBytes input = RandomBytes(6 * 1000);
    ASSERT_TRUE(convertor->Convert(nullptr, 0, 0, nullptr));
    EXPECT_EQ(convertor->GetOutputLength(), 0);
    EXPECT_EQ(ConvertAll(*convertor, input), ConvertAll(plugin, kFrom, kTo, input));
}

TEST(SoxrStream, InputIsOnlyRead) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(kFrom, kTo);
    CBytes input = RandomBytes(6 * 1000);
    const CBytes before = input;
    ASSERT_TRUE(convertor->Convert(input.data(), static_cast<int>(input.size()), 0, nullptr));
    EXPECT_EQ(input, before);
}

TEST(SoxrStream, ConvertorsDoNotDisturbEachOther) {
    const CPluginUnderTest plugin;
    const CBytes input = RandomBytes(6 * 4000);
    const CBytes expected = ConvertAll(plugin, kFrom, kTo, input);
    const auto first = plugin.Create(kFrom, kTo);
    const auto second = plugin.Create(kFrom, kTo);
    CBytes half(input.begin(), input.begin() + 6 * 2000);
    CBytes rest(input.begin() + 6 * 2000, input.end());
    CBytes outputs[2];
    for (CBytes* part : {&half, &rest}) {
        ASSERT_TRUE(first->Convert(part->data(), static_cast<int>(part->size()), 0, nullptr));
        AppendOutput(*first, outputs[0]);
        ASSERT_TRUE(second->Convert(part->data(), static_cast<int>(part->size()), 0, nullptr));
        AppendOutput(*second, outputs[1]);
    }
    Drain(*first, outputs[0]);
    Drain(*second, outputs[1]);
    EXPECT_EQ(outputs[0], expected);
    EXPECT_EQ(outputs[1], expected);
}

}  // namespace
