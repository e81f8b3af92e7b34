// Packed samples of every format that codecs deliver.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "plugins/libav/OutputFormat.h"
#include "plugins/libav/SamplePacking.h"

namespace {

// A block with the samples of its channels one after another or in planes.
template <typename TSample>
CFramePointer Block(AVSampleFormat format, int channels, const std::vector<TSample>& samples) {
    CFramePointer block(Allocated(av_frame_alloc()));
    block->format = format;
    block->sample_rate = 48000;
    block->nb_samples = static_cast<int>(samples.size()) / channels;
    av_channel_layout_default(&block->ch_layout, channels);
    EXPECT_EQ(av_frame_get_buffer(block.get(), 0), 0);
    const int planes = av_sample_fmt_is_planar(format) != 0 ? channels : 1;
    const std::size_t size = samples.size() / static_cast<std::size_t>(planes);
    for (int plane = 0; plane < planes; ++plane) {
        std::memcpy(block->extended_data[plane], samples.data() + static_cast<std::size_t>(plane) * size,
                    size * sizeof(TSample));
    }
    return block;
}

std::string Packed(const AVFrame& block, int bits, std::int32_t qualifier = kIntegerSamples, std::int64_t first = 0) {
    const SHeldWavFormat format{{48000, bits, block.ch_layout.nb_channels}, qualifier};
    const std::int64_t count = block.nb_samples - first;
    std::string bytes(static_cast<std::size_t>(count * BlockSizeOf(format.m_format)), '\x77');
    PackSamples(block, first, count, format, reinterpret_cast<unsigned char*>(bytes.data()));
    return bytes;
}

template <typename TNumber>
std::vector<TNumber> Numbers(const std::string& bytes) {
    std::vector<TNumber> numbers(bytes.size() / sizeof(TNumber));
    std::memcpy(numbers.data(), bytes.data(), bytes.size());
    return numbers;
}

using CShorts = std::vector<std::int16_t>;

TEST(LibavPacking, IntegersOfTheSameWidthPassUnchanged) {
    const CShorts shorts{1, -2, 32767, -32768};
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*Block(AV_SAMPLE_FMT_S16, 2, shorts), 16)), shorts);
    const std::vector<std::int32_t> longs{1, -2, INT32_MAX, INT32_MIN};
    EXPECT_EQ(Numbers<std::int32_t>(Packed(*Block(AV_SAMPLE_FMT_S32, 1, longs), 32)), longs);
    const std::vector<std::uint8_t> bytes{0, 1, 128, 255};
    EXPECT_EQ(Numbers<std::uint8_t>(Packed(*Block(AV_SAMPLE_FMT_U8, 2, bytes), 8)), bytes);
}

TEST(LibavPacking, IntegersKeepTheirUpperBytes) {
    const std::vector<std::int32_t> longs{0x12345600, -0x100};
    EXPECT_EQ(Packed(*Block(AV_SAMPLE_FMT_S32, 1, longs), 24), std::string("\x56\x34\x12\xFF\xFF\xFF", 6));
    const std::vector<std::int64_t> longest{0x1234567800000000};
    EXPECT_EQ(Packed(*Block(AV_SAMPLE_FMT_S64, 1, longest), 32), "\x78\x56\x34\x12");
}

// WavPack has its 8-bit samples in the upper half of 16 bits.
TEST(LibavPacking, EightBitsAreUnsigned) {
    const CShorts shorts{-32768, 0, 32512};
    EXPECT_EQ(Packed(*Block(AV_SAMPLE_FMT_S16P, 1, shorts), 8), std::string("\0\x80\xFF", 3));
}

TEST(LibavPacking, PlanesBecomeFrames) {
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*Block<std::int16_t>(AV_SAMPLE_FMT_S16P, 2, {1, 2, 3, 4, 5, 6}), 16)),
              (CShorts{1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*Block<std::int16_t>(AV_SAMPLE_FMT_S16P, 3, {1, 2, 3, 4, 5, 6}), 16)),
              (CShorts{1, 3, 5, 2, 4, 6}));
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*Block<std::int16_t>(AV_SAMPLE_FMT_S16P, 1, {1, 2, 3}), 16)),
              (CShorts{1, 2, 3}));
}

TEST(LibavPacking, BeginsAtTheFrameThatIsAskedFor) {
    const auto planes = Block<std::int16_t>(AV_SAMPLE_FMT_S16P, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*planes, 16, kIntegerSamples, 1)), (CShorts{2, 5, 3, 6}));
    const auto frames = Block<std::int16_t>(AV_SAMPLE_FMT_S16, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*frames, 16, kIntegerSamples, 2)), (CShorts{5, 6}));
}

TEST(LibavPacking, FloatsAreRoundedToTheNearestAndClipped) {
    constexpr float kStep = 1.0f / 32768;
    const std::vector<float> floats{0.0f,          1.4f * kStep,  1.6f * kStep, 0.5f * kStep, 1.5f * kStep,
                                    -0.5f * kStep, -1.5f * kStep, 1.0f,         -1.0f,        7.0f,
                                    -7.0f,         1e30f,         -1e30f};
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*Block(AV_SAMPLE_FMT_FLTP, 1, floats), 16)),
              (CShorts{0, 1, 2, 0, 2, 0, -2, 32767, -32768, 32767, -32768, 32767, -32768}));
}

TEST(LibavPacking, WhatIsNoNumberBecomesSilence) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const std::vector<float> floats{nan, infinity, -infinity, 0.5f};
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*Block(AV_SAMPLE_FMT_FLT, 2, floats), 16)),
              (CShorts{0, 32767, -32768, 16384}));
}

TEST(LibavPacking, FloatsPassAsTheyAre) {
    const std::vector<float> floats{0.1f, -3.0f, 1e-30f, 1.0f};
    EXPECT_EQ(Numbers<float>(Packed(*Block(AV_SAMPLE_FMT_FLT, 2, floats), 32, kFloatSamples)), floats);
    const std::vector<double> doubles{0.1f, -3.0, 1e-30f, 1.0};
    EXPECT_EQ(Numbers<float>(Packed(*Block(AV_SAMPLE_FMT_DBLP, 1, doubles), 32, kFloatSamples)), floats);
    EXPECT_EQ(Numbers<std::int16_t>(Packed(*Block<double>(AV_SAMPLE_FMT_DBL, 1, {0.5, -2.0}), 16)),
              (CShorts{16384, -32768}));
}

TEST(LibavOutput, SoundWithoutAChannelIsRefused) {
    CCodecContextPointer codec(Allocated(avcodec_alloc_context3(nullptr)));
    CFramePointer block(Allocated(av_frame_alloc()));
    block->sample_rate = 48000;
    EXPECT_THROW(OutputFormatOf(*codec, *block, AF_BASIC), std::runtime_error);
}

// What an ADPCM decoder notes is the width of its codes.
TEST(LibavOutput, WidthThatACodecNotesCountsForLosslessOnesAlone) {
    const auto block = Block<std::int16_t>(AV_SAMPLE_FMT_S16, 1, {0});
    CCodecContextPointer codec(Allocated(avcodec_alloc_context3(nullptr)));
    codec->bits_per_raw_sample = 4;
    codec->codec_id = AV_CODEC_ID_ADPCM_MS;
    EXPECT_EQ(OutputFormatOf(*codec, *block, AF_BASIC).m_format.nBitsPerSample, 16);
    codec->codec_id = AV_CODEC_ID_FLAC;
    EXPECT_EQ(OutputFormatOf(*codec, *block, AF_BASIC).m_format.nBitsPerSample, 8);
    codec->bits_per_raw_sample = 0;
    EXPECT_EQ(OutputFormatOf(*codec, *block, AF_BASIC).m_format.nBitsPerSample, 16);
}

TEST(LibavOutput, WidthThatNoSampleHasDoesNotCount) {
    const auto block = Block<std::int32_t>(AV_SAMPLE_FMT_S32, 1, {0});
    const CCodecContextPointer codec(Allocated(avcodec_alloc_context3(nullptr)));
    codec->codec_id = AV_CODEC_ID_FLAC;
    for (const int bits : {INT_MIN, -1, 33, INT_MAX - 6, INT_MAX}) {
        codec->bits_per_raw_sample = bits;
        EXPECT_EQ(OutputFormatOf(*codec, *block, AF_BASIC).m_format.nBitsPerSample, 32) << bits;
    }
}

}  // namespace
