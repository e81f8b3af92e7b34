// How much output one call may hand out, against the arithmetic of a converting source.
#include <gtest/gtest.h>

#include "sdk/OutputAllowance.h"
#include "tests/support/ConvertingRead.h"
#include "tests/support/Sanitizers.h"

namespace {

constexpr int kRates[] = {8000, 11025, 22050, 44100, 48000, 88200, 96000, 192000};
constexpr int kWidths[] = {8, 16, 24, 32};
constexpr int kChannelPairs[][2] = {{1, 1}, {2, 2}, {8, 8}, {1, 2}, {2, 1}};

// Sanitizers look at the steps that are taken, not at each result.
constexpr int kStep = support::kSanitized ? 7 : 1;

template <typename TVisit>
void ForEachFormatPair(TVisit visit) {
    for (const int fromRate : kRates) {
        for (const int toRate : kRates) {
            for (const int fromBits : kWidths) {
                for (const int toBits : kWidths) {
                    for (const auto& channels : kChannelPairs) {
                        visit(SWavFormat{fromRate, fromBits, channels[0]}, SWavFormat{toRate, toBits, channels[1]});
                    }
                }
            }
        }
    }
}

void ExpectFits(const SWavFormat& from, const SWavFormat& to, int size) {
    const int request = ConvertingReadRequest(from, to, size);
    if (request < kSmallestConvertingRead) return;
    const COutputAllowance allowance(from, to);
    const std::int64_t frameBytes = BlockSizeOf(to);
    ASSERT_LE(allowance.Frames(request) * frameBytes, size) << request;
    // A host's buffer holds a frame at least.
    if (size < frameBytes) return;
    ASSERT_LE(allowance.TailFrames(0) * frameBytes, size);
    ASSERT_LE(allowance.TailFrames(request) * frameBytes, size);
}

TEST(SdkOutputAllowance, NeverExceedsTheBufferOfAConvertingRead) {
    ForEachFormatPair([](const SWavFormat& from, const SWavFormat& to) {
        for (int size = 40; size < 600; size += kStep) ASSERT_NO_FATAL_FAILURE(ExpectFits(from, to, size));
        for (int size = 600; size <= 300000; size += 97 * kStep) ASSERT_NO_FATAL_FAILURE(ExpectFits(from, to, size));
    });
}

TEST(SdkOutputAllowance, NeverExceedsTheBufferWhereTheRequestIsCapped) {
    ForEachFormatPair([](const SWavFormat& from, const SWavFormat& to) {
        const std::int64_t atCap = 16 + std::int64_t{kLargestConvertingRead} * ByteRateOf(to) / ByteRateOf(from);
        for (int off = -200; off <= 200; off += kStep) {
            ASSERT_NO_FATAL_FAILURE(ExpectFits(from, to, static_cast<int>(atCap + off)));
        }
    });
}

TEST(SdkOutputAllowance, WholeFramesAtOneRateAreNeverHeldBack) {
    ForEachFormatPair([](const SWavFormat& from, const SWavFormat& to) {
        if (from.nSampleRate != to.nSampleRate) return;
        const COutputAllowance allowance(from, to);
        for (int frames = 1; frames < 5000; ++frames)
            ASSERT_GE(allowance.Frames(frames * static_cast<int>(BlockSizeOf(from))), frames);
    });
}

TEST(SdkOutputAllowance, CoversWhatTheInputIsWorthLessOneFrame) {
    ForEachFormatPair([](const SWavFormat& from, const SWavFormat& to) {
        const COutputAllowance allowance(from, to);
        for (int frames = 1; frames < 2000; frames += 7) {
            const std::int64_t worth = std::int64_t{frames} * to.nSampleRate / from.nSampleRate;
            ASSERT_GE(allowance.Frames(frames * static_cast<int>(BlockSizeOf(from))), worth);
        }
    });
}

TEST(SdkOutputAllowance, TailAlwaysMovesOn) {
    ForEachFormatPair([](const SWavFormat& from, const SWavFormat& to) {
        ASSERT_GE(COutputAllowance(from, to).TailFrames(0), 1);
        ASSERT_GE(COutputAllowance(from, to).TailFrames(4), COutputAllowance(from, to).Frames(16));
    });
}

TEST(SdkOutputAllowance, StaysWithinAnIntOfBytes) {
    const SWavFormat from{8000, 8, 1};
    const SWavFormat to{192000, 32, 2};
    EXPECT_LE(COutputAllowance(from, to).Frames(INT32_MAX) * BlockSizeOf(to), INT32_MAX);
}

}  // namespace
