// Reduction of 32-bit samples to a narrower width.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "plugins/soxr/Requantiser.h"

namespace {

std::int32_t Reduced(std::int32_t sample, int workingBits, int targetBits) {
    CRequantiser(workingBits, targetBits).Apply(&sample, 1);
    return sample;
}

TEST(SoxrRequantiser, SamplesThatFitAreLeftAlone) {
    for (const std::int32_t sample : {0, 0x12345600, -0x12345600, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(Reduced(sample, 24, 24), sample);
        EXPECT_EQ(Reduced(sample, 16, 32), sample);
        EXPECT_EQ(Reduced(sample, 16, 16), sample);
        EXPECT_EQ(Reduced(sample, 8, 8), sample);
        EXPECT_EQ(Reduced(sample, 32, 32), sample);
    }
}

struct SRounding {
    std::int32_t m_nSample;
    std::int32_t m_nRounded;
};

TEST(SoxrRequantiser, RoundsTo24BitsWithHalvesUp) {
    const SRounding table[] = {
        {0, 0},
        {0x7F, 0},
        {0x80, 0x100},
        {0x17F, 0x100},
        {0x180, 0x200},
        {-0x80, 0},
        {-0x81, -0x100},
        {-0x180, -0x100},
        {INT32_MAX, 0x7FFFFF00},
        {0x7FFFFF80, 0x7FFFFF00},
        {0x7FFFFF7F, 0x7FFFFF00},
        {INT32_MIN, INT32_MIN},
        {INT32_MIN + 0x7F, INT32_MIN},
        {INT32_MIN + 0x80, INT32_MIN + 0x100},
    };
    for (const SRounding& entry : table)
        EXPECT_EQ(Reduced(entry.m_nSample, 32, 24), entry.m_nRounded) << entry.m_nSample;
}

TEST(SoxrRequantiser, DitheredSamplesStayWithinOneAndAHalfSteps) {
    for (const int bits : {8, 16}) {
        const double step = std::ldexp(1.0, 32 - bits);
        std::vector<std::int32_t> samples;
        for (int i = 0; i < 100000; ++i) samples.push_back(i * 20011 - 1000550000);
        const std::vector<std::int32_t> before = samples;
        CRequantiser(32, bits).Apply(samples.data(), samples.size());
        for (std::size_t i = 0; i < samples.size(); ++i) {
            ASSERT_LE(std::abs(static_cast<double>(samples[i]) - before[i]), 1.5 * step) << before[i];
            ASSERT_EQ(samples[i] & (static_cast<std::int32_t>(step) - 1), 0);
        }
    }
}

TEST(SoxrRequantiser, DitheredExtremesSaturate) {
    for (const int bits : {8, 16}) {
        const std::int32_t step = 1 << (32 - bits);
        std::vector<std::int32_t> highest(1000, INT32_MAX);
        std::vector<std::int32_t> lowest(1000, INT32_MIN);
        CRequantiser requantiser(32, bits);
        requantiser.Apply(highest.data(), highest.size());
        requantiser.Apply(lowest.data(), lowest.size());
        for (const std::int32_t sample : highest) ASSERT_GE(sample, INT32_MAX - 2 * step);
        for (const std::int32_t sample : lowest) ASSERT_LE(sample, INT32_MIN + step);
    }
}

TEST(SoxrRequantiser, RestartRepeatsTheDither) {
    CRequantiser requantiser(32, 16);
    std::vector<std::int32_t> first(1000);
    std::vector<std::int32_t> second(1000);
    std::vector<std::int32_t> third(1000);
    requantiser.Apply(first.data(), first.size());
    requantiser.Apply(second.data(), second.size());
    requantiser.Restart();
    requantiser.Apply(third.data(), third.size());
    EXPECT_NE(first, second);
    EXPECT_EQ(first, third);
}

TEST(SoxrDitherNoise, HasNoMeanAndTheSpreadOfATriangleAtEveryWidth) {
    for (const unsigned bits : {8U, 16U, 24U}) {
        CTriangularDither dither;
        const double step = std::ldexp(1.0, static_cast<int>(bits));
        double sum = 0;
        double squares = 0;
        double products = 0;
        double previous = 0;
        constexpr int kCount = 400000;
        for (int i = 0; i < kCount; ++i) {
            const double noise = static_cast<double>(dither.Next(bits)) / step;
            ASSERT_LT(std::abs(noise), 1);
            sum += noise;
            squares += noise * noise;
            products += noise * previous;
            previous = noise;
        }
        EXPECT_NEAR(sum / kCount, 0, 0.003);
        EXPECT_NEAR(squares / kCount, 1.0 / 6, 0.002);
        EXPECT_NEAR(products / kCount, 0, 0.002);
    }
}

}  // namespace
