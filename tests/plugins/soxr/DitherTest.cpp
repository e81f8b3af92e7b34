// Dither through the whole convertor: where it is, where it is not, and what it does.
#include <cmath>
#include <map>

#include "tests/plugins/soxr/PluginUnderTest.h"
#include "tests/plugins/soxr/SineFit.h"

namespace {

constexpr int kCount = 200000;

// 24-bit samples of one value as 16-bit output.
std::vector<int> ReducedConstant(const CPluginUnderTest& plugin, int value, int rate = 48000) {
    return Unpacked(
        ConvertAll(plugin, Held(rate, 24, 1), Held(rate, 16, 1), Packed(std::vector<int>(kCount, value), 24)), 16);
}

std::vector<int> ReducedConstant(int value) { return ReducedConstant(CPluginUnderTest(), value); }

struct SError {
    double m_nMean;
    double m_nPower;
};

// In steps of the 16-bit output, which are 256 of the input.
SError ErrorOf(const std::vector<int>& output, int value) {
    double sum = 0;
    double squares = 0;
    for (const int sample : output) {
        const double error = sample - value / 256.0;
        sum += error;
        squares += error * error;
    }
    return {sum / kCount, squares / kCount};
}

TEST(SoxrDither, TriangularErrorHasNoMeanAndAConstantPowerAtEveryLevel) {
    // In steps of an eighth of the 16-bit LSB, which is 256 here.
    for (int value = -256; value <= 256; value += 32) {
        const SError error = ErrorOf(ReducedConstant(value), value);
        EXPECT_NEAR(error.m_nMean, 0, 0.006) << value;
        // Rounding and two even spreads of one LSB each: 3 / 12. Evenly spread dither would vary with the level.
        EXPECT_NEAR(error.m_nPower, 0.25, 0.004) << value;
    }
}

TEST(SoxrDither, RectangularErrorHasNoMeanAndAPowerThatFollowsTheLevel) {
    const CPluginUnderTest plugin;
    plugin.Set("dither", "rectangular");
    for (int value = -256; value <= 256; value += 32) {
        const SError error = ErrorOf(ReducedConstant(plugin, value), value);
        const double fraction = value / 256.0 - std::floor(value / 256.0);
        EXPECT_NEAR(error.m_nMean, 0, 0.006) << value;
        EXPECT_NEAR(error.m_nPower, fraction * (1 - fraction), 0.004) << value;
    }
}

TEST(SoxrDither, NoneRoundsAlone) {
    const CPluginUnderTest plugin;
    plugin.Set("dither", "none");
    for (const int value : {0, 100, 127, 128, -128, -129, 0x7FFFFF, -0x800000}) {
        const int expected = std::min((value + 128) >> 8, 32767);
        const auto output = ReducedConstant(plugin, value);
        EXPECT_EQ(std::count(output.begin(), output.end(), expected), kCount) << value;
    }
}

TEST(SoxrDither, ConstantHalfStepTogglesBetweenItsNeighbours) {
    std::map<int, int> counts;
    for (const int sample : ReducedConstant(128)) ++counts[sample];
    EXPECT_EQ(counts.size(), 2U);
    EXPECT_NEAR(counts[0], kCount / 2, kCount / 100);
    EXPECT_NEAR(counts[1], kCount / 2, kCount / 100);
}

TEST(SoxrDither, SilenceShowsTheTriangle) {
    std::map<int, int> counts;
    for (const int sample : ReducedConstant(0)) ++counts[sample];
    EXPECT_EQ(counts.size(), 3U);
    EXPECT_NEAR(counts[-1], kCount / 8, kCount / 100);
    EXPECT_NEAR(counts[0], kCount * 3 / 4, kCount / 100);
    EXPECT_NEAR(counts[1], kCount / 8, kCount / 100);
}

TEST(SoxrDither, ExtremesSaturateInsteadOfWrapping) {
    for (const int sample : ReducedConstant(0x7FFFFF)) ASSERT_GE(sample, 32766);
    for (const int sample : ReducedConstant(-0x800000)) ASSERT_LE(sample, -32767);
}

// Power of the error from 0 up to `highest`, in steps of the output squared per hertz: a mean over many short spectra.
double ErrorDensity(const std::vector<int>& output, int rate, double lowest, double highest) {
    constexpr std::size_t kLength = 512;
    const auto hann = [](std::size_t at) { return 0.5 - 0.5 * std::cos(kTurn * static_cast<double>(at) / kLength); };
    double power = 0;
    int measured = 0;
    for (std::size_t begin = 0; begin + kLength <= 100 * kLength; begin += kLength) {
        for (std::size_t bin = 1; bin < kLength / 2; bin += 4) {
            const double frequency = static_cast<double>(bin) * rate / kLength;
            if (frequency < lowest || frequency > highest) continue;
            double real = 0;
            double imaginary = 0;
            for (std::size_t at = 0; at < kLength; ++at) {
                const double phase = kTurn * static_cast<double>(bin * at % kLength) / kLength;
                real += output[begin + at] * hann(at) * std::cos(phase);
                imaginary += output[begin + at] * hann(at) * std::sin(phase);
            }
            power += (real * real + imaginary * imaginary) / (0.375 * kLength) * 2 / rate;
            ++measured;
        }
    }
    return power / measured;
}

TEST(SoxrDither, ShapedErrorLeavesTheFrequenciesWhereHearingIsSharp) {
    const CPluginUnderTest plugin;
    const std::vector<int> flat = ReducedConstant(plugin, 0, 44100);
    plugin.Set("dither", "shaped");
    const std::vector<int> shaped = ReducedConstant(plugin, 0, 44100);
    const auto decibels = [&](double lowest, double highest) {
        return 10 *
               std::log10(ErrorDensity(shaped, 44100, lowest, highest) / ErrorDensity(flat, 44100, lowest, highest));
    };
    // The response of the published filter: about -16 dB at low frequencies, a dip at 4 kHz, 22 dB at the top.
    EXPECT_LT(decibels(2500, 5000), -17);
    EXPECT_LT(decibels(100, 2000), -11);
    EXPECT_GT(decibels(17000, 21000), 12);
}

TEST(SoxrDither, ShapedErrorHasNoMean) {
    const CPluginUnderTest plugin;
    plugin.Set("dither", "shaped");
    for (const int value : {-200, 0, 77, 128}) {
        EXPECT_NEAR(ErrorOf(ReducedConstant(plugin, value), value).m_nMean, 0, 0.006) << value;
    }
}

TEST(SoxrDither, KeepsAToneThatIsSmallerThanAStep) {
    const CPluginUnderTest plugin;
    std::vector<int> input;
    for (int at = 0; at < kCount; ++at) {
        input.push_back(static_cast<int>(std::lround(0.4 * 256 * std::sin(kTurn * 1000 * at / 48000))));
    }
    for (const char* const dither : {"rectangular", "triangular", "shaped"}) {
        plugin.Set("dither", dither);
        const auto output = Unpacked(ConvertAll(plugin, Held(48000, 24, 1), Held(48000, 16, 1), Packed(input, 24)), 16);
        EXPECT_NEAR(FitSine(output, 0, output.size(), kTurn * 1000 / 48000).m_nAmplitude, 0.4, 0.01) << dither;
    }
    plugin.Set("dither", "none");
    EXPECT_EQ(ConvertAll(plugin, Held(48000, 24, 1), Held(48000, 16, 1), Packed(input, 24)), CBytes(2 * kCount));
}

struct SDitherCase {
    SHeldWavFormat m_from;
    SHeldWavFormat m_to;
    bool m_bDithers;
};

// 8-bit silence is 128, wider silence 0.
bool IsSilence(const CBytes& bytes, int bits) {
    const unsigned char silence = bits == 8 ? 128 : 0;
    return std::all_of(bytes.begin(), bytes.end(), [&](unsigned char byte) { return byte == silence; });
}

TEST(SoxrDither, IsThereExactlyWhereTheTargetMayBeTooNarrowAndHasAtMost16Bits) {
    const SDitherCase cases[] = {
        {Held(48000, 24, 2), Held(48000, 16, 2), true},   {Held(48000, 32, 2), Held(48000, 16, 2), true},
        {Held(48000, 16, 2), Held(48000, 8, 2), true},    {Held(44100, 16, 2), Held(48000, 16, 2), true},
        {Held(44100, 8, 2), Held(48000, 8, 2), true},     {Held(44100, 8, 2), Held(48000, 16, 2), true},
        {Held(48000, 16, 2), Held(48000, 16, 1), true},   {Held(48000, 8, 2), Held(48000, 8, 1), true},
        {HeldFloat(48000, 2), Held(48000, 16, 2), true},  {Held(48000, 8, 6), Held(48000, 16, 2), true},
        {Held(48000, 16, 1), Held(48000, 16, 2), false},  {Held(48000, 8, 2), Held(48000, 16, 2), false},
        {Held(48000, 8, 2), Held(48000, 16, 1), false},   {Held(48000, 16, 2), Held(48000, 24, 2), false},
        {Held(44100, 16, 2), Held(48000, 24, 2), false},  {Held(48000, 32, 2), Held(48000, 24, 2), false},
        {Held(44100, 24, 2), Held(48000, 32, 2), false},  {Held(48000, 24, 2), Held(48000, 24, 1), false},
        {HeldFloat(48000, 2), Held(48000, 24, 2), false}, {Held(44100, 16, 2), HeldFloat(48000, 2), false},
    };
    const CPluginUnderTest plugin;
    for (const SDitherCase& entry : cases) {
        const SWavFormat& from = entry.m_from.m_format;
        const SWavFormat& to = entry.m_to.m_format;
        const CBytes silence(static_cast<std::size_t>(BlockSizeOf(from)) * 5000, from.nBitsPerSample == 8 ? 128 : 0);
        const CBytes output = ConvertAll(plugin, entry.m_from, entry.m_to, silence);
        EXPECT_NE(IsSilence(output, to.nBitsPerSample), entry.m_bDithers)
            << from.nSampleRate << '/' << from.nBitsPerSample << '/' << from.nChannels << " to " << to.nSampleRate
            << '/' << to.nBitsPerSample << '/' << to.nChannels;
    }
}

TEST(SoxrDither, IsTheSameInEachConvertor) {
    const CPluginUnderTest plugin;
    const CBytes input = RandomBytes(30000);
    for (const char* const dither : {"rectangular", "triangular", "shaped"}) {
        plugin.Set("dither", dither);
        EXPECT_EQ(ConvertAll(plugin, Held(48000, 24, 2), Held(48000, 16, 2), input),
                  ConvertAll(plugin, Held(48000, 24, 2), Held(48000, 16, 2), input));
    }
}

}  // namespace
