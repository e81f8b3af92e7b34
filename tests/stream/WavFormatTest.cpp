// Derived quantities, equality and layout of wave formats.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "stream/WavFormat.h"

static_assert(sizeof(SWavFormat) == 12 && alignof(SWavFormat) == 4, "three words");
static_assert(std::is_trivially_copyable<SWavFormat>::value && std::is_standard_layout<SWavFormat>::value,
              "travels by value");
static_assert(offsetof(SWavFormat, nSampleRate) == 0, "first word");
static_assert(offsetof(SWavFormat, nBitsPerSample) == 4, "second word");
static_assert(offsetof(SWavFormat, nChannels) == 8, "third word");
static_assert(std::is_same<decltype(SWavFormat::nSampleRate), std::int32_t>::value, "signed");
static_assert(sizeof(SHeldWavFormat) == 16 && offsetof(SHeldWavFormat, m_nQualifier) == 12, "qualifier behind record");
static_assert(sizeof(SAdvancedWavFormat) == 36 && offsetof(SAdvancedWavFormat, m_held) == 0, "four words first");
static_assert(sizeof(EAudioRawState) == 4 && sizeof(EAuxFlags) == 4, "32-bit enumerations");
static_assert(ARS_MORE == 0 && AUX_CONVERT == 0x1000, "values of the contract");

namespace {

struct SDerived {
    SWavFormat m_format;
    std::int64_t m_nBlockSize;
    std::int64_t m_nByteRate;
};

TEST(WavFormat, BlockSizeAndByteRateCountWholeBytes) {
    const SDerived kTable[] = {
        {{44100, 16, 2}, 4, 176400}, {{48000, 24, 6}, 18, 864000},
        {{8000, 8, 1}, 1, 8000},     {{192000, 32, 8}, 32, 6144000},
        {{44100, 12, 2}, 2, 88200},                                          // 12 bits truncate to one byte
        {{44100, 7, 2}, 0, 0},       {{44100, -12, 2}, -2, -88200},          // toward zero, not down
        {{44100, -7, 2}, 0, 0},      {{2147483647, 32, 2}, 8, 17179869176},  // beyond 32 bits
    };
    for (const SDerived& row : kTable) {
        SCOPED_TRACE(row.m_format.nBitsPerSample);
        EXPECT_EQ(BlockSizeOf(row.m_format), row.m_nBlockSize);
        EXPECT_EQ(ByteRateOf(row.m_format), row.m_nByteRate);
    }
}

TEST(WavFormat, FormatsAreEqualWhenAllFourWordsAre) {
    const SHeldWavFormat format{{44100, 16, 2}, 0};
    EXPECT_TRUE(format == (SHeldWavFormat{{44100, 16, 2}, 0}));
    EXPECT_FALSE(format != (SHeldWavFormat{{44100, 16, 2}, 0}));
}

TEST(WavFormat, AnyOneWordMakesFormatsDiffer) {
    const SHeldWavFormat format{{44100, 16, 2}, 0};
    const SHeldWavFormat kOthers[] = {
        {{48000, 16, 2}, 0}, {{44100, 24, 2}, 0}, {{44100, 16, 1}, 0}, {{44100, 16, 2}, 1}};
    for (const SHeldWavFormat& other : kOthers) {
        EXPECT_TRUE(format != other);
        EXPECT_FALSE(format == other);
    }
}

TEST(WavFormat, AnUnsetFormatIsAllMinusOneWithoutAQualifier) {
    EXPECT_EQ(kUnsetWavFormat.m_format.nSampleRate, -1);
    EXPECT_EQ(kUnsetWavFormat.m_format.nBitsPerSample, -1);
    EXPECT_EQ(kUnsetWavFormat.m_format.nChannels, -1);
    EXPECT_EQ(kUnsetWavFormat.m_nQualifier, 0);
}

TEST(WavFormat, ARecordOfAHeldFormatReadsAsFourWords) {
    const SHeldWavFormat held{{44100, 16, 2}, 9};
    std::int32_t words[4] = {};
    std::memcpy(words, &held.m_format, sizeof words);
    EXPECT_EQ(words[0], 44100);
    EXPECT_EQ(words[1], 16);
    EXPECT_EQ(words[2], 2);
    EXPECT_EQ(words[3], 9);
}

}  // namespace
