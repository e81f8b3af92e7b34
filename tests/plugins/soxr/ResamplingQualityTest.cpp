// What each quality is worth at 24 bits: the claims of doc/resampling-quality.md.
#include "tests/plugins/soxr/PluginUnderTest.h"
#include "tests/plugins/soxr/ResamplingMeasures.h"

namespace {

CResample ResamplerOf(const CPluginUnderTest& plugin, const SRates& rates) {
    return [&plugin, rates](const std::vector<int>& samples) {
        return Unpacked(ConvertAll(plugin, Held(rates.m_nFrom, 24, 1), Held(rates.m_nTo, 24, 1), Packed(samples, 24)),
                        24);
    };
}

std::string NameOf(const SRates& rates) { return std::to_string(rates.m_nFrom) + " to " + std::to_string(rates.m_nTo); }

struct SClaim {
    const char* m_pszQuality;
    double m_nNoise;     // dB below a tone at 100, 997 and 10007 Hz
    double m_nAnyNoise;  // dB below a tone anywhere in the band
    double m_nImages;    // dB below their tone
    double m_nSweep;     // dB below a sweep
    double m_nRipple;    // dB
};

constexpr SClaim kClaims[] = {{"quick", 105, 105, 105, 105, 0.0005},
                              {"high", 133, 130, 133, 130, 0.0005},
                              {"very-high", 141, 141, 141, 141, 0.0005}};

constexpr SRates kRatesOfClaims[] = {{44100, 48000}, {96000, 44100}};

template <typename TVisit>
void ForEachClaim(TVisit visit) {
    const CPluginUnderTest plugin;
    for (const SClaim& claim : kClaims) {
        plugin.Set("quality", claim.m_pszQuality);
        for (const SRates& rates : kRatesOfClaims) {
            SCOPED_TRACE(claim.m_pszQuality + (" " + NameOf(rates)));
            visit(claim, rates, ResamplerOf(plugin, rates));
        }
    }
}

TEST(SoxrResamplingQuality, NoiseAndDistortionOfTonesAreAsFarDownAsClaimed) {
    ForEachClaim([](const SClaim& claim, const SRates& rates, const CResample& resample) {
        for (const double frequency : {100.0, 997.0, 10007.0}) {
            EXPECT_GT(ToneToNoise(resample, rates, frequency), claim.m_nNoise) << frequency;
        }
        for (const double frequency : {5000.0, 12000.0, 17000.0, 19000.0}) {
            EXPECT_GT(ToneToNoise(resample, rates, frequency), claim.m_nAnyNoise) << frequency;
        }
    });
}

TEST(SoxrResamplingQuality, ImagesOfTonesAreAsFarDownAsClaimed) {
    ForEachClaim([](const SClaim& claim, const SRates& rates, const CResample& resample) {
        for (const int frequency : {1000, 7000, 17000, 19800}) {
            EXPECT_GT(ToneToImages(resample, rates, frequency), claim.m_nImages) << frequency;
        }
        if (rates.m_nFrom < rates.m_nTo) return;
        for (const double frequency : {22061.0, 22500.0, 24000.0, 30000.0, 46000.0}) {
            EXPECT_GT(ToneToAlias(resample, rates, frequency), claim.m_nImages) << frequency;
        }
    });
}

TEST(SoxrResamplingQuality, SweepIsPerfectAsFarAsClaimed) {
    ForEachClaim([](const SClaim& claim, const SRates& rates, const CResample& resample) {
        EXPECT_GT(SweepToError(resample, rates), claim.m_nSweep);
    });
}

TEST(SoxrResamplingQuality, LevelIsTheSameUpTo20Kilohertz) {
    ForEachClaim([](const SClaim& claim, const SRates& rates, const CResample& resample) {
        EXPECT_LT(Ripple(resample, rates, 8), claim.m_nRipple);
    });
}

TEST(SoxrResamplingQuality, NothingIsDelayedAndTheLengthIsExact) {
    ForEachClaim([](const SClaim& /*claim*/, const SRates& rates, const CResample& resample) {
        EXPECT_NEAR(Delay(resample, rates), 0, 1e-5);
        EXPECT_EQ(resample(std::vector<int>(static_cast<std::size_t>(rates.m_nFrom))).size(),
                  static_cast<std::size_t>(rates.m_nTo));
    });
}

TEST(SoxrResamplingQuality, FullScaleSineKeepsItsLevelAtEveryPairOfRatesAndEveryQuality) {
    const CPluginUnderTest plugin;
    for (const char* const quality : {"quick", "high", "very-high"}) {
        plugin.Set("quality", quality);
        for (const int from : kRates) {
            for (const int to : kRates) {
                const SRates rates{from, to};
                const std::vector<int> output = ResampledTone(ResamplerOf(plugin, rates), rates, 1000, 0.5);
                EXPECT_NEAR(Decibels(FitTone(output, to, 1000).m_nAmplitude / kToneLevel), 0, 0.001) << NameOf(rates);
            }
        }
    }
}

TEST(SoxrResamplingQuality, OverloadSaturatesInsteadOfWrapping) {
    // A full-scale square wave rings above full scale between its samples.
    std::vector<int> samples;
    for (int at = 0; at < 20000; ++at) samples.push_back(at / 40 % 2 == 0 ? 32767 : -32768);
    const CPluginUnderTest plugin;
    const auto output = Unpacked(ConvertAll(plugin, Held(44100, 16, 1), Held(96000, 16, 1), Packed(samples, 16)), 16);
    EXPECT_GE(*std::max_element(output.begin(), output.end()), 32766);
    EXPECT_LE(*std::min_element(output.begin(), output.end()), -32767);
    // A wrapped sample would stand full scale away from its neighbours, in the middle of a half-wave.
    for (std::size_t half = 10; half < 200; ++half) {
        const auto middle = static_cast<std::size_t>((static_cast<double>(half) * 40 + 20) * 96000 / 44100);
        const int sign = half % 2 == 0 ? 1 : -1;
        for (std::size_t at = middle - 38; at < middle + 38; ++at) ASSERT_GT(output[at] * sign, 20000) << at;
    }
}

}  // namespace
