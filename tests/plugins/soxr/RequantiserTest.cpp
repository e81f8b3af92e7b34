// Real samples to integers.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "plugins/soxr/Requantiser.h"

namespace {

template <typename TSample>
std::vector<std::int32_t> Requantised(CRequantiser<TSample>& requantiser, const std::vector<TSample>& samples) {
    std::vector<std::int32_t> integers(samples.size());
    requantiser.Apply(samples.data(), samples.size(), integers.data());
    return integers;
}

template <typename TSample>
std::int32_t Requantised(double steps, int bits) {
    CRequantiser<TSample> requantiser(bits, EDither::None, 0);
    const std::vector<TSample> sample{static_cast<TSample>(std::ldexp(steps, 1 - bits))};
    return Requantised(requantiser, sample).front();
}

struct SRounding {
    double m_nSteps;
    std::int32_t m_nInteger;
};

TEST(SoxrRequantiser, RoundsToTheNearestIntegerWithHalvesUp) {
    const SRounding table[] = {{0, 0},      {0.49, 0},  {0.5, 1},   {1.49, 1},  {1.5, 2},     {-0.49, 0}, {-0.5, 0},
                               {-0.51, -1}, {-1.5, -1}, {-1.6, -2}, {100, 100}, {-100, -100}, {-1.0, -1}};
    for (const SRounding& entry : table) {
        for (const int bits : {8, 16, 24}) {
            EXPECT_EQ(Requantised<float>(entry.m_nSteps, bits), entry.m_nInteger) << entry.m_nSteps << ' ' << bits;
            EXPECT_EQ(Requantised<double>(entry.m_nSteps, bits), entry.m_nInteger) << entry.m_nSteps << ' ' << bits;
        }
        EXPECT_EQ(Requantised<double>(entry.m_nSteps, 32), entry.m_nInteger) << entry.m_nSteps;
    }
}

TEST(SoxrRequantiser, EveryIntegerOfItsWidthStaysAsItIs) {
    for (const int bits : {8, 16}) {
        for (int integer = -(1 << (bits - 1)); integer < 1 << (bits - 1); ++integer) {
            ASSERT_EQ(Requantised<float>(integer, bits), integer) << bits;
            ASSERT_EQ(Requantised<double>(integer, bits), integer) << bits;
        }
    }
    for (const int integer : {-0x800000, -0x7FFFFF, -1, 0x7FFFFE, 0x7FFFFF}) {
        EXPECT_EQ(Requantised<float>(integer, 24), integer);
    }
    for (const int integer : {INT32_MIN, INT32_MIN + 1, INT32_MAX - 1, INT32_MAX}) {
        EXPECT_EQ(Requantised<double>(integer, 32), integer);
    }
}

TEST(SoxrRequantiser, LimitsToTheRangeOfTheIntegers) {
    for (const int bits : {8, 16, 24}) {
        const double full = std::ldexp(1.0, bits - 1);
        for (const double steps : {full - 0.5, full, full + 1, 5 * full, 1e20}) {
            EXPECT_EQ(Requantised<float>(steps, bits), static_cast<int>(full) - 1) << steps;
            EXPECT_EQ(Requantised<double>(steps, bits), static_cast<int>(full) - 1) << steps;
            EXPECT_EQ(Requantised<float>(-steps - 1, bits), -static_cast<int>(full)) << steps;
            EXPECT_EQ(Requantised<double>(-steps - 1, bits), -static_cast<int>(full)) << steps;
        }
    }
    EXPECT_EQ(Requantised<double>(1e300, 32), INT32_MAX);
    EXPECT_EQ(Requantised<double>(-1e300, 32), INT32_MIN);
}

TEST(SoxrRequantiser, CountsWhatIsBeyondFullScaleByMoreThanHalfAStep) {
    CRequantiser<double> requantiser(8, EDither::None, 0);
    Requantised<double>(requantiser, {1, -1, 128.5 / 128, -128.5 / 128, 0.99});
    EXPECT_EQ(requantiser.GetClippedSamples(), 0U);
    Requantised<double>(requantiser, {128.6 / 128, -128.6 / 128, 0, 1e9});
    EXPECT_EQ(requantiser.GetClippedSamples(), 3U);
}

constexpr EDither kDithers[] = {EDither::Rectangular, EDither::Triangular, EDither::Shaped};

TEST(SoxrRequantiser, PiecesOfAnySizeGiveTheSameIntegers) {
    std::vector<float> samples;
    for (int i = 0; i < 3000; ++i) samples.push_back(static_cast<float>(std::sin(i * 0.1)));
    for (const EDither dither : kDithers) {
        CRequantiser<float> whole(16, dither, 0);
        CRequantiser<float> parts(16, dither, 0);
        std::vector<std::int32_t> integers(samples.size());
        for (std::size_t at = 0, size = 1; at < samples.size(); at += size, size = size * 2 % 509) {
            parts.Apply(samples.data() + at, std::min(size, samples.size() - at), integers.data() + at);
        }
        EXPECT_EQ(integers, Requantised(whole, samples));
    }
}

TEST(SoxrRequantiser, RestartRepeatsTheDither) {
    const std::vector<double> silence(1000);
    for (const EDither dither : kDithers) {
        CRequantiser<double> requantiser(16, dither, 0);
        const auto first = Requantised(requantiser, silence);
        const auto second = Requantised(requantiser, silence);
        requantiser.Restart();
        const auto third = Requantised(requantiser, silence);
        if (dither != EDither::Rectangular) {
            EXPECT_NE(first, second);
        }
        EXPECT_EQ(first, third);
    }
}

TEST(SoxrRequantiser, ChannelsHaveDitherOfTheirOwn) {
    const std::vector<double> quiet(20000, 0.3 / 32768);
    CRequantiser<double> left(16, EDither::Triangular, 0);
    CRequantiser<double> right(16, EDither::Triangular, 1);
    const auto one = Requantised(left, quiet);
    const auto other = Requantised(right, quiet);
    double product = 0;
    double square = 0;
    for (std::size_t i = 0; i < quiet.size(); ++i) {
        product += (one[i] - 0.3) * (other[i] - 0.3);
        square += (one[i] - 0.3) * (one[i] - 0.3);
    }
    EXPECT_LT(std::abs(product / square), 0.03);
}

TEST(SoxrRequantiser, ShapingStaysTameWhileEverythingClips) {
    CRequantiser<float> requantiser(8, EDither::Shaped, 0);
    for (const std::int32_t sample : Requantised(requantiser, std::vector<float>(50000, 3.0F))) ASSERT_GE(sample, 100);
    // And afterwards nothing of it is left.
    const auto silence = Requantised(requantiser, std::vector<float>(5000, 0.0F));
    for (std::size_t i = 10; i < silence.size(); ++i) ASSERT_LE(std::abs(silence[i]), 12);
}

TEST(SoxrEffectiveDither, IsNoneForSamplesThatFitAndForMoreThan16Bits) {
    for (const EDither wanted : kDithers) {
        EXPECT_EQ(EffectiveDither(wanted, false, 16, 48000), EDither::None);
        EXPECT_EQ(EffectiveDither(wanted, true, 24, 48000), EDither::None);
        EXPECT_EQ(EffectiveDither(wanted, true, 16, 48000), wanted);
        EXPECT_EQ(EffectiveDither(wanted, true, 8, 44100), wanted);
    }
    EXPECT_EQ(EffectiveDither(EDither::None, true, 8, 48000), EDither::None);
}

TEST(SoxrEffectiveDither, IsNotShapedBelow44100HertzWhereNoiseHasNowhereToGo) {
    for (const int rate : {8000, 22050, 32000}) {
        EXPECT_EQ(EffectiveDither(EDither::Shaped, true, 16, rate), EDither::Triangular);
    }
    EXPECT_EQ(EffectiveDither(EDither::Shaped, true, 16, 96000), EDither::Shaped);
}

struct SNoise {
    double m_nMean;
    double m_nPower;
    double m_nCorrelation;  // of neighbours
    double m_nPeak;
};

SNoise Measure(EDither kind) {
    constexpr int kCount = 400000;
    CDitherNoise noise(kind, 0);
    double sum = 0;
    double squares = 0;
    double products = 0;
    double peak = 0;
    double previous = 0;
    for (int i = 0; i < kCount; ++i) {
        const double value = noise.Next();
        sum += value;
        squares += value * value;
        products += value * previous;
        peak = std::max(peak, std::abs(value));
        previous = value;
    }
    return {sum / kCount, squares / kCount, products / kCount, peak};
}

TEST(SoxrDitherNoise, IsWhiteWithoutAMeanAndSpreadOverOneOrTwoSteps) {
    const SNoise rectangular = Measure(EDither::Rectangular);
    EXPECT_NEAR(rectangular.m_nMean, 0, 0.002);
    EXPECT_NEAR(rectangular.m_nPower, 1.0 / 12, 0.001);
    EXPECT_NEAR(rectangular.m_nCorrelation, 0, 0.001);
    EXPECT_NEAR(rectangular.m_nPeak, 0.5, 0.001);
    const SNoise triangular = Measure(EDither::Triangular);
    EXPECT_NEAR(triangular.m_nMean, 0, 0.003);
    EXPECT_NEAR(triangular.m_nPower, 1.0 / 6, 0.002);
    EXPECT_NEAR(triangular.m_nCorrelation, 0, 0.002);
    EXPECT_GT(triangular.m_nPeak, 0.98);
    EXPECT_LT(triangular.m_nPeak, 1);
}

}  // namespace
